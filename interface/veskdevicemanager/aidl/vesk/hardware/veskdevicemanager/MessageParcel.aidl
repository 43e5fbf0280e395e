package vesk.hardware.veskdevicemanager;

/** A notification to a registered client. */
@VintfStability
parcelable MessageParcel {
    int what;
    String message;
    byte[] payload;
}
