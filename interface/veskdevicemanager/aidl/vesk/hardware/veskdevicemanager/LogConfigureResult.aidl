package vesk.hardware.veskdevicemanager;

import vesk.hardware.veskdevicemanager.VeskLogInfo;

/** The log daemon's configuration and the board's status of reading it (0: failed). */
@VintfStability
parcelable LogConfigureResult {
    int ret;
    VeskLogInfo info;
}
