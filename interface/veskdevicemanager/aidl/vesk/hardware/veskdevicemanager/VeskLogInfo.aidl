package vesk.hardware.veskdevicemanager;

/** The log daemon's configuration. */
@VintfStability
parcelable VeskLogInfo {
    String level;
    String base;
    String mode;
    String total_size;
    String once_size;
}
