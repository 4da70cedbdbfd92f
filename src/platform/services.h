// SPDX-License-Identifier: MIT
// The makers of a system's services: one for each, defined in its folder.
#pragma once
#include <functional>
#include <memory>

#include "platform/system.h"

namespace twr {

// Sets for the process what the services rely on: failures come as such, neither as signals nor as boxes of the system.
void PrepareProcess();

std::unique_ptr<Clock> MakeClock();
std::unique_ptr<Zone> MakeZone();

// `failed` is called when a block can't be created, opened or mapped, or is lost, once the user has been told why on a system
// without a desktop. A missing block to open is no fault.
std::unique_ptr<SharedMemory> MakeSharedMemory(const Roots& roots, std::function<void()> failed);

std::unique_ptr<Registry> MakeRegistry(const std::u16string& root);
std::unique_ptr<Files> MakeFiles(const std::u16string& programData);
std::unique_ptr<Xml> MakeXml();
std::unique_ptr<Desktop> MakeDesktop();
std::unique_ptr<Libraries> MakeLibraries();
std::unique_ptr<Instance> MakeInstance(const Roots& roots);
std::unique_ptr<StatusBoard> MakeStatusBoard(const Roots& roots);
std::unique_ptr<Executable> MakeExecutable();
std::unique_ptr<Console> MakeConsole();  // on Windows sets its encoding while it exists
std::unique_ptr<CrashReports> MakeCrashReports();

}  // namespace twr
