package vesk.hardware.veskdevicemanager;

/** The watchdog's configuration; the two times are uint32_t in HIDL, the same bits here. */
@VintfStability
parcelable WatchDogCfg {
    String wdtDevice;
    int wdt_timeout;
    int wdt_interval;
}
