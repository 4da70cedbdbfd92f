// SPDX-License-Identifier: MIT
// All services of the machine.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "base/findings.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "platform/crash_reports.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/library.h"
#include "platform/registry.h"
#include "platform/shared_memory.h"
#include "platform/xml.h"

namespace twr {

// What the core of the suite needs of the machine.
struct CoreServices {
    Clock& clock;
    Zone& zone;
    SharedMemory& memory;
    Registry& registry;
    Files& files;
    Xml& xml;
    Desktop& desktop;
    Findings* findings = nullptr;  // told what the readers of the user's files and settings pass over
};

// A folder of files by which a user's programs know of each other.
struct FilePlace {
    std::u16string folder;
    std::u16string tag = {};  // appended to the files' names, if several users share the folder
};

// Where a system keeps what outlives a process. Tests pass their own, so that they never affect a running suite.
struct Roots {
    std::u16string namePrefix = {};  // put before the names of shared memory and locks
    std::u16string registry = {};    // Linux: the registry's file; Windows: a key under the user's root, empty for that root itself
    std::u16string programData = {};     // the folder for data that all users share
    std::vector<FilePlace> locks = {};   // Linux: a program locks a file in each of them
    std::vector<FilePlace> status = {};  // Linux: its status is a file in the first of them where one can be made
};

// The running user's own. Unknown parts are empty.
Roots UserRoots();

class System {
public:
    virtual ~System() = default;

    virtual CoreServices Core() = 0;
    virtual Libraries& GetLibraries() = 0;
    virtual Instance& GetInstance() = 0;
    virtual StatusBoard& GetStatusBoard() = 0;
    virtual Executable& GetExecutable() = 0;
    virtual Console& GetConsole() = 0;
    virtual CrashReports& GetCrashReports() = 0;

    // The exit status of the program. Not 0 on Linux once shared memory was not available or was lost, so that a service is
    // restarted.
    virtual int ExitStatus() const { return 0; }
};

// The bridge takes no arguments. Where a person types some at a terminal, those that ask what it is are answered, and then it is
// not to be started; others are told on standard error. Elsewhere none has any effect.
bool AnswerArguments(int argc, char** argv);

std::unique_ptr<System> MakeSystem(const Roots& roots);

}  // namespace twr
