# The device manager service's board settings, for the device's BoardConfig.mk:
#     VESK_VESKDM_DIR := vendor/vesk/veskdm    # where this checkout sits in the tree
#     include $(VESK_VESKDM_DIR)/BoardConfigVeskdevicemanager.mk
# A board makefile cannot ask for its own folder ($(call my-dir) is for Android.mk files), hence
# the variable; vendor/vesk/veskdm when it is not set. The modules are in veskdevicemanager.mk,
# which reads the product makefile's VESK_VESKDM_FRONT_END (hidl or aidl) as this file does.

VESK_VESKDM_DIR ?= vendor/vesk/veskdm
VESK_VESKDM_FRONT_END ?= hidl

# The service's domain and labels, and what the board's system apps need to call it: one policy
# for either front end (the same domain, each front end's interface labelled).
BOARD_VENDOR_SEPOLICY_DIRS += $(VESK_VESKDM_DIR)/sepolicy/vendor
SYSTEM_EXT_PUBLIC_SEPOLICY_DIRS += $(VESK_VESKDM_DIR)/sepolicy/system_ext/public
SYSTEM_EXT_PRIVATE_SEPOLICY_DIRS += $(VESK_VESKDM_DIR)/sepolicy/system_ext/private

# The service's properties are named persist.vesk.* (its log level and the custom output mode it
# publishes), outside the vendor namespaces that the build requires of a vendor property_contexts
# on a board shipping with API 29 or later. The names are the board's contract with its tools and
# apps, which read them, and stay; the build then lists them instead of stopping. This relaxes the
# check for every vendor property_contexts of the board, and VTS still reports these names on the
# device (vts_treble_sys_prop_test). Their context, vendor_vesk_prop, is in the vendor namespace.
BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE := true

# The framework's side of the HAL the chosen front end's manifest fragment serves.
ifeq ($(VESK_VESKDM_FRONT_END),hidl)
DEVICE_FRAMEWORK_COMPATIBILITY_MATRIX_FILE += \
    $(VESK_VESKDM_DIR)/default/framework_compatibility_matrix.xml
else ifeq ($(VESK_VESKDM_FRONT_END),aidl)
DEVICE_FRAMEWORK_COMPATIBILITY_MATRIX_FILE += \
    $(VESK_VESKDM_DIR)/interface/veskdevicemanager/aidl/default/framework_compatibility_matrix.xml
else
$(error VESK_VESKDM_FRONT_END is "$(VESK_VESKDM_FRONT_END)": hidl or aidl)
endif
