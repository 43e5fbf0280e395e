/*
 * The product record that getProductInfo() keeps for the life of the process.
 */
#pragma once

namespace vesk::hardware::veskdevicemanager::implementation {

// Releases the kept record and forgets a failed read, so that the next getProductInfo() asks
// the board again, as the first call of a fresh process does. For hosts that run many service
// lifetimes in one process, such as test programs.
void forgetProductRecord();

}  // namespace vesk::hardware::veskdevicemanager::implementation
