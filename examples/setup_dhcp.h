// The set-up steps, shared by the example's Linux and Windows programs.
#pragma once

#include <string>

// Switches the one network card to DHCP after backing up its settings to `backupFile` (a
// Windows path); false, with the reason printed, when a step fails.
bool SwitchNetworkCardToDhcp(const std::string& backupFile);
