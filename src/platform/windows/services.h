// The Windows side of each service.
#pragma once
#include <memory>
#include <string>

#include "platform/system.h"
#include "platform/windows/unique_handle.h"

namespace twr {

class WindowsClock : public Clock {
public:
    WindowsClock();
    std::int64_t Ticks() const override;

private:
    void(WINAPI* now_)(FILETIME*);
};

class WindowsZone : public Zone {
public:
    std::optional<ZoneState> Now() const override;
};

class WindowsSharedMemory : public SharedMemory {
public:
    explicit WindowsSharedMemory(std::u16string prefix) : prefix_(std::move(prefix)) {}
    std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) override;
    std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) override;

private:
    std::u16string prefix_;
};

class WindowsRegistry : public Registry {
public:
    explicit WindowsRegistry(std::u16string root) : root_(std::move(root)) {}
    bool OpenOrCreate(std::u16string_view key) override;
    std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name) const override;
    bool Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) override;

private:
    std::wstring Path(std::u16string_view key) const;
    UniqueKey Opened(std::u16string_view key);

    std::u16string root_;
};

class WindowsFiles : public Files {
public:
    explicit WindowsFiles(std::u16string programData) : programData_(std::move(programData)) {}
    bool Exists(std::u16string_view path) const override;
    void MakeFolder(std::u16string_view path) override;
    std::unique_ptr<ByteSource> Open(std::u16string_view path) override;
    bool Append(std::u16string_view path, std::string_view bytes) override;
    bool Copy(std::u16string_view from, std::u16string_view to) override;
    bool Rename(std::u16string_view from, std::u16string_view to) override;
    void Remove(std::u16string_view path) override;
    std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const override;
    std::u16string ProgramDataFolder() const override { return programData_; }

private:
    std::u16string programData_;
};

class WindowsXml : public Xml {
public:
    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override;
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view path) override;
};

class WindowsLibraries : public Libraries {
public:
    std::unique_ptr<Library> Load(std::u16string_view path) override;
};

class WindowsInstance : public Instance {
public:
    explicit WindowsInstance(std::u16string prefix) : prefix_(std::move(prefix)) {}
    bool Claim(std::u16string_view name) override;
    void RaiseOther(std::u16string_view caption) override;

private:
    std::u16string prefix_;
    UniqueHandle mutex_;
};

class WindowsExecutable : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override;
};

// Changes what the process's console understands, for as long as it lives.
class WindowsConsole : public Console {
public:
    WindowsConsole();
    ~WindowsConsole() override;
    WindowsConsole(const WindowsConsole&) = delete;
    WindowsConsole& operator=(const WindowsConsole&) = delete;
    std::optional<ConsoleSize> Size() const override;
    Output Write(std::string_view utf8, const std::function<bool()>& goOn) override;
    void WriteError(std::string_view utf8) override;
    bool Wait(int milliseconds) override;

private:
    HANDLE output_;
    HANDLE error_;
    UINT formerCodePage_;              // 0 without a console
    std::optional<DWORD> formerMode_;  // nothing when standard output is no console
    bool supportsEscapes_ = false;
    bool listening_ = false;
};

}  // namespace twr
