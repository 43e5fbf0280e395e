package vesk.hardware.veskdevicemanager;

/** An SPI transfer's status and the bytes it received. */
@VintfStability
parcelable TransferResult {
    int ret;
    byte[] data;
}
