// Command registration, argument validators and parse-error reporting of the hostkit tool.
#include "command_line.h"

#include <algorithm>
#include <boost/regex.hpp>
#include <cctype>
#include <ostream>
#include <string>
#include <vector>

#include "commands.h"
#include "hostkit/patterns.h"

namespace hostkit_tool {

namespace {

bool IsHardwareAddress(const std::string& text) {
  if (text.size() != 17) {
    return false;
  }
  for (size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (i % 3 == 2 ? (c != '-' && c != ':') : std::isxdigit(c) == 0) {
      return false;
    }
  }
  return true;
}

bool IsNumber(const std::string& text) {
  return !text.empty() && text.size() < 9 &&
         text.find_first_not_of("0123456789") == std::string::npos;
}

// Edits (insertions, deletions, substitutions) that turn `a` into `b`.
size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) {
    row[j] = j;
  }
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t above = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
      diagonal = above;
    }
  }
  return row[b.size()];
}

// The command whose subcommand was not given or not known: the deepest one parsed.
CLI::App* DeepestCommand(CLI::App& app) {
  CLI::App* current = &app;
  for (bool descended = true; descended;) {
    descended = false;
    for (CLI::App* sub : current->get_subcommands({})) {
      if (sub->parsed()) {
        current = sub;
        descended = true;
        break;
      }
    }
  }
  return current;
}

std::string CommandPath(const CLI::App* command) {
  std::string path;
  for (; command != nullptr && command->get_parent() != nullptr; command = command->get_parent()) {
    path = command->get_name() + (path.empty() ? "" : " " + path);
  }
  return path.empty() ? "hostkit" : "hostkit " + path;
}

// "unknown command" with the nearest name, when the first word left over names no command.
bool ReportUnknownCommand(CLI::App& app, std::ostream& err) {
  CLI::App* command = DeepestCommand(app);
  const std::vector<CLI::App*> choices = command->get_subcommands({});
  if (choices.empty()) {
    return false;
  }
  std::string word;
  for (const std::string& left : app.remaining(true)) {
    if (!left.empty() && left[0] != '-') {
      word = left;
      break;
    }
  }
  if (word.empty()) {
    return false;
  }
  std::string nearest;
  size_t best = word.size();
  for (const CLI::App* choice : choices) {
    const size_t distance = EditDistance(word, choice->get_name());
    if (distance < best) {
      best = distance;
      nearest = choice->get_name();
    }
  }
  err << CommandPath(command) << ": unknown command \"" << word << "\"";
  if (!nearest.empty() && best * 2 <= word.size()) {
    err << "; did you mean \"" << nearest << "\"?";
  }
  err << "\nRun " << CommandPath(command) << " --help to see the commands.\n";
  return true;
}

}  // namespace

CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& description,
                     const std::string& example) {
  CLI::App* command = parent.add_subcommand(name, description);
  command->footer("Example:\n  " + example);
  return command;
}

CLI::Validator HardwareAddressValidator() {
  return CLI::Validator(
      [](std::string& text) {
        return IsHardwareAddress(text)
                   ? std::string()
                   : "\"" + text +
                         "\" is not a hardware address (six hex pairs: 00-0C-76-3A-5E-21)";
      },
      "HWADDR");
}

CLI::Validator AdapterNumberOrHardwareAddress() {
  return CLI::Validator(
      [](std::string& text) {
        return IsNumber(text) || IsHardwareAddress(text)
                   ? std::string()
                   : "\"" + text + "\" is neither an adapter number nor a hardware address";
      },
      "NUMBER|HWADDR");
}

CLI::Validator KeyNameValidator() {
  return CLI::Validator(
      [](std::string& text) {
        KeyName key;
        return ParseKeyName(text, key) ? std::string()
                                       : "\"" + text +
                                             "\" does not start with a root key such as HKLM "
                                             "or HKEY_CURRENT_USER";
      },
      "KEY");
}

CLI::Validator HostNameValidator() {
  return CLI::Validator(
      [](std::string& text) {
        return Hostkit::IsValidHostName(text.c_str()) ? std::string()
                                                      : "\"" + text + "\" is not a valid host name";
      },
      "NAME");
}

CLI::Validator PatternValidator() {
  return CLI::Validator(
      [](std::string& text) {
        try {
          boost::regex pattern(text);
          return std::string();
        } catch (const std::exception& e) {
          return "\"" + text + "\" is not a valid pattern: " + e.what();
        }
      },
      "PATTERN");
}

bool CheckArgumentsAreUtf8(int argc, char** argv, std::ostream& err) {
  for (int i = 1; i < argc; ++i) {
    if (!IsUtf8(argv[i])) {
      UsageError("argument " + std::to_string(i) + " is not UTF-8 text", err);
      return false;
    }
  }
  return true;
}

int ReportParseError(CLI::App& app, const CLI::ParseError& error, std::ostream& out,
                     std::ostream& err) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    return app.exit(error, out, err) == 0 ? kDone : kUsage;
  }
  if ((dynamic_cast<const CLI::RequiredError*>(&error) != nullptr ||
       dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) &&
      ReportUnknownCommand(app, err)) {
    return kUsage;
  }
  err << "hostkit: " << error.what() << "\nRun " << CommandPath(DeepestCommand(app))
      << " --help for more information.\n";
  return kUsage;
}

}  // namespace hostkit_tool
