// The makers of this system's services.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "platform/system.h"

namespace twr {

std::unique_ptr<Clock> MakeClock();
std::unique_ptr<Zone> MakeZone();

// `tell` is called with the reason why a block can't be created, opened or mapped. A missing block to open is no fault.
std::unique_ptr<SharedMemory> MakeSharedMemory(const std::u16string& namePrefix, std::function<void(const std::string&)> tell);

std::unique_ptr<Registry> MakeRegistry(const std::u16string& file);
std::unique_ptr<Files> MakeFiles(const std::u16string& programData);
std::unique_ptr<Xml> MakeXml();
std::unique_ptr<Libraries> MakeLibraries();
std::unique_ptr<Desktop> MakeHeadlessDesktop();
std::unique_ptr<Desktop> MakeTerminalDesktop();

// The path of a program's file in a folder: the prefix, the program's name in small letters, and `ending`.
std::string FileIn(const FilePlace& place, std::u16string_view prefix, std::u16string_view program, std::u16string_view ending);

std::unique_ptr<Instance> MakeInstance(const Roots& roots);
std::unique_ptr<StatusBoard> MakeStatusBoard(const Roots& roots);
std::unique_ptr<Executable> MakeExecutable();
std::unique_ptr<CrashReports> MakeCrashReports();
std::unique_ptr<Console> MakeConsole();
std::unique_ptr<ConsoleScreen> MakeConsoleScreen();

}  // namespace twr
