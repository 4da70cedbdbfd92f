// The makers of this system's services.
#pragma once
#include <memory>
#include <string>

#include "platform/system.h"

namespace twr {

std::unique_ptr<Clock> MakeClock();
std::unique_ptr<Zone> MakeZone();
std::unique_ptr<SharedMemory> MakeSharedMemory(const std::u16string& namePrefix);
std::unique_ptr<Registry> MakeRegistry(const std::u16string& root);
std::unique_ptr<Files> MakeFiles(const std::u16string& programData);
std::unique_ptr<Xml> MakeXml();
std::unique_ptr<Libraries> MakeLibraries();
std::unique_ptr<Desktop> MakeDesktop();
std::unique_ptr<Instance> MakeInstance(const std::u16string& namePrefix);
std::unique_ptr<StatusBoard> MakeStatusBoard(const std::u16string& namePrefix);
std::unique_ptr<Executable> MakeExecutable();
std::unique_ptr<CrashReports> MakeCrashReports();

// Sets the encoding of the process's console for the life of the object.
std::unique_ptr<Console> MakeConsole();

}  // namespace twr
