package vesk.hardware.veskdevicemanager;

/**
 * What a serial read hands back: the bytes read, and the board's count (negative for a failed
 * read, with no data; above the size asked for when the board says so, with data_size bytes).
 */
@VintfStability
parcelable ReadResult {
    byte[] data;
    int bytes_read;
}
