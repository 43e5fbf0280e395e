/*
 * Host HIDL runtime: the generated headers include this; the package uses no message queues.
 */
#pragma once

#include <hidl/HidlSupport.h>
