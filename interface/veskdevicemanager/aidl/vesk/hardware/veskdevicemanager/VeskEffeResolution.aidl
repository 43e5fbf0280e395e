package vesk.hardware.veskdevicemanager;

/** A display resolution; status 1 marks a usable entry. The sizes are uint32_t in HIDL. */
@VintfStability
parcelable VeskEffeResolution {
    int width;
    int height;
    int fps;
    int status;
}
