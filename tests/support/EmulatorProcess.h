// A connector emulator for one test: started on a scratch folder (its data and a copy of the
// example workspace), on a port of its own, and made the one the component's default backend
// reaches; stopped and removed at the end. Elsewhere in the test program the default backend finds
// no emulator.
// The emulator is a program of the tests' own platform: under Wine, corvane_emulator.exe, started
// and named by Windows paths.
#pragma once

#include "connector/ConnectorLink.h"

#include <string>

namespace testsupport {

class EmulatorProcess {
public:
    struct Options {
        std::wstring workspace; // empty: a copy of the example workspace
        std::wstring user;      // empty: the emulator's default user
        // Another desktop on the same cloud: this one's database is that one's.
        const EmulatorProcess* cloudOf = nullptr;
        // Whether the component's default backend is pointed at this emulator.
        bool current = true;
    };

    EmulatorProcess();
    explicit EmulatorProcess(Options options);
    ~EmulatorProcess();
    EmulatorProcess(const EmulatorProcess&) = delete;
    EmulatorProcess& operator=(const EmulatorProcess&) = delete;

    // Starts (again) on the same data folder; waits until it has written its endpoint file.
    void Start();
    // Ends it at once, as a crash would (SIGKILL, TerminateProcess), leaving its endpoint file
    // behind.
    void Kill();
    // Asks the emulator on this data folder, whoever started it, to stop and waits for it.
    void Stop();

    const std::wstring& DataFolder() const { return data_; }
    // The workspace folder as the component names it.
    std::string WorkspaceFolder() const;
    // A document of the workspace, by its path relative to it ("Gearbox/cover.par").
    std::wstring Document(const std::string& relative) const;
    Corvane::Endpoint Endpoint() const;
    // One control action ({"Action": ...}) answered as text.
    std::string Control(const std::string& request) const;
    // The status, asked for until it no longer holds `piece` (for a minute at most).
    std::string StatusWithout(const std::string& piece) const;

private:
    Options options_;
    std::wstring scratch_;
    std::wstring data_;
    std::wstring workspace_;
    unsigned long pid_ = 0;
    std::wstring previousProgram_;
    std::wstring previousData_;
};

} // namespace testsupport
