/*
 * The board's texts as an AIDL String can carry them. A String travels as UTF-16, and the
 * platform refuses to convert text that is not UTF-8 (the whole reply fails) or converts some of
 * it loosely; the board's records hold whatever bytes the board wrote. So each sequence that is
 * not UTF-8 becomes U+FFFD before it leaves the service, one for each maximal part of a
 * sequence (the substitution Unicode recommends, and what veskdm's output does with the same
 * bytes of the HIDL facade): a client sees the same text from either front end.
 */
#pragma once

#include <string>

namespace aidl::vesk::hardware::veskdevicemanager {

// `text` with every ill-formed sequence replaced by U+FFFD (RFC 3629: no overlong forms, no
// surrogates, nothing past U+10FFFF). Text that is UTF-8 comes back as it is.
std::string aidlText(const std::string& text);

}  // namespace aidl::vesk::hardware::veskdevicemanager
