// Compiled, never run: a program that has TRUE, FALSE and BOOL from another library (defined
// the way glib and older C libraries define them) before it includes every public header, and
// still uses the library's and the other library's names side by side.
#define FALSE (0)
#define TRUE (!FALSE)
typedef int BOOL;  // NOLINT(modernize-use-using): written as a C library writes it

#include <hostkit/adapter_classification.h>
#include <hostkit/broadband_tweak.h>
#include <hostkit/cab_files.h>
#include <hostkit/configure_ie.h>
#include <hostkit/configure_oe.h>
#include <hostkit/device_manager.h>
#include <hostkit/dhcp_release_renew.h>
#include <hostkit/dialup.h>
#include <hostkit/file_and_print_sharing.h>
#include <hostkit/inventory.h>
#include <hostkit/lan_switch.h>
#include <hostkit/live_tcpip.h>
#include <hostkit/os.h>
#include <hostkit/patterns.h>
#include <hostkit/registry_backup.h>
#include <hostkit/regwiz.h>
#include <hostkit/snmp_query.h>
#include <hostkit/static_tcpip.h>
#include <hostkit/strings.h>
#include <hostkit/usb.h>
#include <hostkit/window_controller.h>

static_assert(TRUE == 1 && FALSE == 0, "the other library's definitions stand");

BOOL ForeignMacrosBothLibraries() {
  const BOOL matched = Hostkit::RegExpMatch("a", "a") ? TRUE : FALSE;
  return matched;
}
