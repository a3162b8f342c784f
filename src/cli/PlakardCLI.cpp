#include "cli/PlakardCLI.hpp"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

#include "cli/KnownOptions.hpp"
#include "cli/StandardOutput.hpp"
#include "platform/PlakardError.hpp"
#include "platform/StandardError.hpp"

namespace plakard {

namespace {

constexpr int statusSuccess = 0;
constexpr int statusFailure = 1;
constexpr int statusNoCommand = 2;

int printUsage(int status) {
    printLine(usageText);
    return status;
}

// Scripts set PLAKARD_STRICT to have a mistyped option fail instead of being
// ignored; empty or "0" leaves the default.
bool strictOptions() {
    const char* value = std::getenv("PLAKARD_STRICT");
    return value != nullptr && *value != '\0' && std::string_view(value) != "0";
}

// False when the command ran to its end but found something wrong (check).
bool dispatch(const std::string& command, const ParsedOptions& parsed) {
    if (command == "compose") {
        PlakardCLI::runCompose(parsed.options);
    } else if (command == "resize") {
        PlakardCLI::runResize(parsed.options);
    } else if (command == "probe") {
        PlakardCLI::runProbe(parsed.positionals);
    } else if (command == "check") {
        return PlakardCLI::runCheck(parsed);
    } else {
        throw PlakardError("unknown command '" + command + "'; try `plakard help`");
    }
    return true;
}

// The status of a run that did not fail: the usage text's, or a command's.
int run(const std::vector<std::string>& words) {
    const std::string command = words.empty() ? std::string() : words.front();
    if (command.empty()) return printUsage(statusNoCommand);
    if (command == "help") return printUsage(statusSuccess);
    // Asking for help wins wherever it stands, even as an option's value, and
    // before anything is parsed or read.
    if (std::ranges::any_of(words, [](const std::string& word) { return word == "--help" || word == "-h"; })) {
        return printUsage(statusSuccess);
    }
    const ParsedOptions parsed = parseOptions(std::vector<std::string>(words.begin() + 1, words.end()));
    if (strictOptions()) refuseUnknownOptions(command, parsed.options);
    return dispatch(command, parsed) ? statusSuccess : statusFailure;
}

}  // namespace

// Lines a driver has already printed go out first.
int PlakardCLI::reportFailure(std::string_view message) {
    flushStandardOutput();
    std::string line = "plakard: ";
    line += message;
    line += '\n';
    writeStandardError(line);
    return statusFailure;
}

int PlakardCLI::main(const std::vector<std::string>& arguments) {
    // Element 0 is the program path; a process may be started without one.
    const std::vector<std::string> words(arguments.empty() ? arguments.end() : arguments.begin() + 1,
                                         arguments.end());
    try {
        const int status = run(words);
        finishStandardOutput();
        return status;
    } catch (const PlakardError& error) {
        return reportFailure(error.description);
    } catch (const std::bad_alloc&) {
        // "std::bad_alloc" would tell a user nothing; the large allocations
        // are all images, sized by the input and by --size.
        return reportFailure("not enough memory for images this large");
    } catch (const std::exception& error) {
        return reportFailure(error.what());
    } catch (...) {
        return reportFailure("unexpected failure");
    }
}

}  // namespace plakard
