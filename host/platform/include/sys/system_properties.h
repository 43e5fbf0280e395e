/*
 * Host stand-in for bionic's <sys/system_properties.h>, which Debian's <cutils/properties.h>
 * includes: only the limits the service uses.
 */
#pragma once

#define PROP_NAME_MAX 32
#define PROP_VALUE_MAX 92
