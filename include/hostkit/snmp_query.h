/// \file
/// CSNMPQuery: reads the MIB-II tables of the local system through the SNMP extension agent the
/// platform ships, called in-process (no network traffic). One walk copies a range of the MIB
/// into a cache of (object identifier, value) texts; lookups then search that cache.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class CSNMPQuery_impl;

/// The in-process MIB-II reader the library uses where IP Helper is not available. Calls on one
/// object are serialised by its own lock.
class HOSTKIT_API CSNMPQuery {
 public:
  /// (object identifier text, value text), in the order the agent returned them.
  using Entry = std::pair<std::string, std::string>;

  /// Binds the agent and its utility library and initialises the agent. On Windows NT 4
  /// without TCP/IP nothing is loaded and the object is unusable.
  CSNMPQuery();
  ///@{
  /// A copy (made or assigned) binds the agent afresh and starts with the other's cache.
  CSNMPQuery(const CSNMPQuery& other);
  CSNMPQuery& operator=(const CSNMPQuery& other);
  ///@}

  virtual ~CSNMPQuery();

  /// Whether the agent was initialised.
  bool IsUsable() const;

  /// Empties the cache and fills it by get-next requests from `start` ("1.3.6.1.2.1") on,
  /// until the agent fails or answers an identifier beyond `end`. False when unusable.
  bool Walk(const std::string& start, const std::string& end);

  /// The value text of "column.index" ("1.3.6.1.2.1.2.2.1.2" and "3"); false when the cache
  /// has no such identifier. Octet strings end with a line feed.
  bool Lookup(const std::string& column, const std::string& index, std::string& value) const;
  /// The entries of a column as (index, value text), in cache order.
  std::vector<Entry> Column(const std::string& column) const;
  /// The whole cache.
  std::vector<Entry> Cache() const;

 private:
  Pimpl<CSNMPQuery_impl> impl_;
};

}  // namespace Hostkit
