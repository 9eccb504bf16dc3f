// Error messages of the readers of registry files and machine profiles: one line
// "FILE:LINE: what is wrong", whatever text of the input they quote.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Hostkit {

// `text` with every control character written as an escape ("\n", "\r", "\t" or "\xHH"), so
// that quoted input cannot break the message into several lines.
std::string EscapeControls(std::string_view text);

// "FILE:LINE: what" with control characters escaped.
std::string ErrorLine(std::string_view file, int line, std::string_view what);

// "the file is larger than N MiB", for a file refused for its size.
std::string FileTooLarge(std::size_t limit);

}  // namespace Hostkit
