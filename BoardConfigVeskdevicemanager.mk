# The device manager service's board settings, for the device's BoardConfig.mk:
#     VESK_VESKDM_DIR := vendor/vesk/veskdm    # where this checkout sits in the tree
#     include $(VESK_VESKDM_DIR)/BoardConfigVeskdevicemanager.mk
# A board makefile cannot ask for its own folder ($(call my-dir) is for Android.mk files), hence
# the variable; vendor/vesk/veskdm when it is not set. The modules are in veskdevicemanager.mk.

VESK_VESKDM_DIR ?= vendor/vesk/veskdm

# The service's domain and labels, and what the board's system apps need to call it.
BOARD_VENDOR_SEPOLICY_DIRS += $(VESK_VESKDM_DIR)/sepolicy/vendor
SYSTEM_EXT_PUBLIC_SEPOLICY_DIRS += $(VESK_VESKDM_DIR)/sepolicy/system_ext/public
SYSTEM_EXT_PRIVATE_SEPOLICY_DIRS += $(VESK_VESKDM_DIR)/sepolicy/system_ext/private

# The framework's side of the HAL the service's manifest fragment serves.
DEVICE_FRAMEWORK_COMPATIBILITY_MATRIX_FILE += \
    $(VESK_VESKDM_DIR)/default/framework_compatibility_matrix.xml
