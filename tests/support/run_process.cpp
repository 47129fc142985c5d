#include "support/run_process.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "support/temp_folder.h"

namespace clipfix::test {

namespace {

std::string Slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void RedirectTo(const std::string& path, int descriptor, int flags) {
    constexpr mode_t kOwnerOnly = 0600;
    const int file = ::open(path.c_str(), flags, kOwnerOnly);
    if (file < 0 || ::dup2(file, descriptor) < 0) {
        std::_Exit(127);
    }
}

[[noreturn]] void Become(const std::vector<std::string>& arguments, const ProcessOptions& options,
                         const std::string& out, const std::string& err) {
    RedirectTo("/dev/null", STDIN_FILENO, O_RDONLY);
    RedirectTo(out, STDOUT_FILENO, O_WRONLY | O_CREAT | O_TRUNC);
    RedirectTo(err, STDERR_FILENO, O_WRONLY | O_CREAT | O_TRUNC);
    if (!options.folder.empty() && ::chdir(options.folder.c_str()) != 0) {
        std::_Exit(127);
    }
    for (const auto& pair : options.environment) {
        const auto equals = pair.find('=');
        ::setenv(pair.substr(0, equals).c_str(), pair.substr(equals + 1).c_str(), 1);
    }
    std::vector<std::string> copies = arguments;
    std::vector<char*> pointers;
    for (auto& copy : copies) {
        pointers.push_back(copy.data());
    }
    pointers.push_back(nullptr);
    ::execvp(pointers[0], pointers.data());
    std::_Exit(127);
}

}  // namespace

ProcessResult RunProcess(const std::vector<std::string>& arguments, const ProcessOptions& options) {
    const TempFolder folder;
    const std::string out = (folder / "out").string();
    const std::string err = (folder / "err").string();
    const pid_t child = ::fork();
    if (child == 0) {
        Become(arguments, options, out, err);
    }
    if (options.signal) {
        std::this_thread::sleep_for(options.signal->second);
        ::kill(child, options.signal->first);
    }
    int state = 0;
    while (::waitpid(child, &state, 0) < 0 && errno == EINTR) {
    }
    ProcessResult result;
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    result.out = Slurp(out);
    result.err = Slurp(err);
    return result;
}

}  // namespace clipfix::test
