package vesk.hardware.veskdevicemanager;

/** What the board knows of a process. */
@VintfStability
parcelable ProcessInfo {
    String name1;
    String name2;
    String name3;
    /** Always 16 bytes (uint8_t[16] in HIDL). */
    byte[] block;
    /** uint64_t in HIDL: the same bits. */
    long value64;
    double valueReal;
    /** uint32_t in HIDL: the same bits. */
    int value32;
}
