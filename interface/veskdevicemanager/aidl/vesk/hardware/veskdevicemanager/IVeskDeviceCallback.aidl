package vesk.hardware.veskdevicemanager;

import vesk.hardware.veskdevicemanager.MessageParcel;

/** A client's receiver of device notifications. */
@VintfStability
oneway interface IVeskDeviceCallback {
    void hwNotify(in MessageParcel parcel);
}
