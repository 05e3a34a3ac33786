// A connector emulator for one test: started on a scratch data folder with the example workspace,
// on a port of its own, and made the one the component's default backend reaches; stopped and
// removed at the end. Elsewhere in the test program the default backend finds no emulator (see
// NoEmulator.cpp).
#pragma once

#include "connector/ConnectorLink.h"

#include <string>
#include <vector>

namespace testsupport {

class EmulatorProcess {
public:
    // False where this build has no emulator program to start.
    static bool Available();
    // The program's path (empty when not Available).
    static std::wstring Program();

    // `workspace` empty: the example workspace.
    explicit EmulatorProcess(std::vector<std::wstring> extraArguments = {},
                             std::wstring workspace = {});
    ~EmulatorProcess();
    EmulatorProcess(const EmulatorProcess&) = delete;
    EmulatorProcess& operator=(const EmulatorProcess&) = delete;

    // Starts (again) on the same data folder; waits until the endpoint file is there.
    void Start();
    // Ends it at once, as a crash would.
    void Kill();
    // Asks it to stop and waits for it.
    void Stop();

    const std::wstring& DataFolder() const { return data_; }
    std::string WorkspaceFolder() const;
    Corvane::Endpoint Endpoint() const;
    // One control action ({"Action": ...}) answered as text.
    std::string Control(const std::string& request) const;

private:
    std::wstring data_;
    std::wstring workspace_;
    std::vector<std::wstring> extra_;
    unsigned long pid_ = 0;
    std::wstring previousProgram_;
    std::wstring previousData_;
};

} // namespace testsupport
