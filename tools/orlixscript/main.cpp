// orlixscript: runs scripts beside the library, which needs no registration then.
#include <cstdio>

#include "../orlix/console.hpp"
#include "script_run.hpp"

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kNotBegun = 2 };

void Write(std::FILE* file, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), file);
    std::fflush(file);
}

std::vector<std::string> ArgumentsOfProgram() {
    std::vector<std::string> arguments;
    int count = 0;
    LPWSTR* const given = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; given && i < count; ++i) arguments.push_back(orlix::ToUtf8(given[i]));
    LocalFree(given);
    return arguments;
}

// Not all engines notice endless recursion before the stack ends.
LONG WINAPI EndCrashed(EXCEPTION_POINTERS* exception) {
    if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_STACK_OVERFLOW) return EXCEPTION_CONTINUE_SEARCH;
    constexpr char kText[] = "orlixscript: out of stack space\r\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), kText, sizeof kText - 1, &written, nullptr);
    TerminateProcess(GetCurrentProcess(), kFailed);
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

int main() try {
    ULONG reserve = 0x4000;  // bytes of stack for EndCrashed
    SetThreadStackGuarantee(&reserve);
    SetUnhandledExceptionFilter(EndCrashed);
    const orlix::Apartment apartment;
    tool::PrepareConsole();
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments = ArgumentsOfProgram();
    if (arguments.empty()) {
        Write(stderr,
              "usage: orlixscript SCRIPT [ARGUMENT...]\r\n"
              "runs a script in VBScript (.vbs) or JScript (.js)\r\n");
        return kNotBegun;
    }
    const script_host::Script script = script_host::ReadScript(arguments[0]);
    arguments.erase(arguments.begin());
    const bool succeeded = script_host::Run(
        script, std::move(arguments),
        {[](std::string_view text) { Write(stdout, text); }, [](std::string_view text) { Write(stderr, text); },
         [](int code) { ExitProcess(static_cast<UINT>(code)); }});
    return succeeded && !std::ferror(stdout) ? kDone : kFailed;  // a full disk is not success
} catch (const std::exception& error) {
    Write(stderr, std::string("orlixscript: ") + error.what() + "\r\n");
    return kNotBegun;
}
