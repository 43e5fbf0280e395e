// A library without HIDL_FETCH_IVeskDeviceManager, for the loader's error path.
extern "C" int veskdm_test_not_a_factory() {
    return 0;
}
