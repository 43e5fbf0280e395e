package vesk.hardware.veskdevicemanager;

/** CPU load in percent per category, and the CPU temperature. */
@VintfStability
parcelable CpuStatus {
    float usr;
    float nic;
    float sys;
    float idle;
    float iowait;
    float irq;
    float softirq;
    /** uint32_t in HIDL: the same bits. */
    int temperature;
}
