package vesk.hardware.veskdevicemanager;

/** One USB device: vendor and product identifier (uint32_t in HIDL, the same bits). */
@VintfStability
parcelable UsbList {
    int vid;
    int pid;
}
