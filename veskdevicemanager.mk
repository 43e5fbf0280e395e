# The device manager service's modules, for the device's product makefile:
#     $(call inherit-product, vendor/vesk/veskdm/veskdevicemanager.mk)
# Its policy folders and framework matrix are board settings: BoardConfigVeskdevicemanager.mk,
# included from the device's BoardConfig.mk.

# The -impl is loaded by the -service with dlopen, so nothing else pulls it in. The Java
# bindings are listed so that every product build compiles them; an app takes them with
# static_libs and needs no installed jar.
PRODUCT_PACKAGES += \
    vesk.hardware.veskdevicemanager@1.0-impl \
    vesk.hardware.veskdevicemanager@1.0-service \
    vesk.hardware.veskdevicemanager-V1.0-java
