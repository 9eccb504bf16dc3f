/// \file
/// FileAndPrintSharing: whether Windows 95, 98 and Me share their disks and printers on the
/// network, and switching either off. On the NT family the queries answer false and the
/// switches do nothing.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class FileAndPrintSharing_impl;

/// File and print sharing of Windows 95, 98 and Me: queries and switches. On the NT family the
/// queries answer false and the switches do nothing.
class HOSTKIT_API FileAndPrintSharing {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  FileAndPrintSharing();
  FileAndPrintSharing(const FileAndPrintSharing& other);
  FileAndPrintSharing& operator=(const FileAndPrintSharing& other);
  ~FileAndPrintSharing();
  ///@}

  ///@{
  /// The sharing service is installed and the half (files or printers) is not switched off
  /// with the text "No".
  bool IsFileSharingEnabled();
  bool IsPrintSharingEnabled();
  ///@}
  ///@{
  /// Writes "No" for the half; a machine without the sharing service's key is left as it is.
  void DisableFileSharing();
  void DisablePrintSharing();
  ///@}

 private:
  Pimpl<FileAndPrintSharing_impl> impl_;
};

}  // namespace Hostkit
