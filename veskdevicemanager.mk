# The device manager service's modules, for the device's product makefile:
#     $(call inherit-product, vendor/vesk/veskdm/veskdevicemanager.mk)
# Its policy folders and framework matrix are board settings: BoardConfigVeskdevicemanager.mk,
# included from the device's BoardConfig.mk.
#
# One front end per board, since both would open the same partition and serial channels. The
# product makefile chooses with VESK_VESKDM_FRONT_END (anywhere in it: the inherited makefile is
# read after it, and the board configuration after both):
#     hidl  the HIDL HAL vesk.hardware.veskdevicemanager@1.0, for the Android 13 board (default)
#     aidl  the stable-AIDL HAL vesk.hardware.veskdevicemanager, for a board launching with
#           Android 14 or later
VESK_VESKDM_FRONT_END ?= hidl

ifeq ($(VESK_VESKDM_FRONT_END),hidl)
# The -impl is loaded by the -service with dlopen, so nothing else pulls it in. The Java
# bindings are listed so that every product build compiles them; an app takes them with
# static_libs and needs no installed jar.
PRODUCT_PACKAGES += \
    vesk.hardware.veskdevicemanager@1.0-impl \
    vesk.hardware.veskdevicemanager@1.0-service \
    vesk.hardware.veskdevicemanager-V1.0-java
else ifeq ($(VESK_VESKDM_FRONT_END),aidl)
# The service (with its .rc and manifest fragment), and the Java bindings of version 1, listed
# for the same reason as HIDL's.
PRODUCT_PACKAGES += \
    vesk.hardware.veskdevicemanager-service \
    vesk.hardware.veskdevicemanager-V1-java
else
$(error VESK_VESKDM_FRONT_END is "$(VESK_VESKDM_FRONT_END)": hidl or aidl)
endif
