// SPDX-License-Identifier: MIT
// A second process of the running test program, for what only two processes can show.
#pragma once
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/test_system.h"

namespace twr::testing {

class ChildProcess {
public:
    // The other ends of its standard input and output.
    ChildProcess(std::FILE* input, std::FILE* output) : input_(input), output_(output) {}
    virtual ~ChildProcess() { std::fclose(input_), std::fclose(output_); }  // each system's kills it first, if it still runs

    // The next line of its standard output, without its end; empty if the output has ended.
    std::string ReadLine() {
        std::string line;
        for (int c; (c = std::getc(output_)) != EOF && c != '\n';) line += static_cast<char>(c);
        return line;
    }
    // Writes a line to its standard input; it may be gone.
    void WriteLine(const std::string& line) { std::fputs((line + '\n').c_str(), input_), std::fflush(input_); }

    virtual void Kill() = 0;  // at once, without a chance to clean up
    virtual int Wait() = 0;   // its exit status

private:
    std::FILE *const input_, *const output_;
};

// Starts this program again as `role`; the main of the test programs does the rest.
std::unique_ptr<ChildProcess> StartRole(const std::string& role, const std::vector<std::string>& arguments);

// Starts a program with its standard streams connected; nullptr or an exit status of 127 if it can't be started.
std::unique_ptr<ChildProcess> StartProgram(const std::string& path, const std::vector<std::string>& arguments);

// A role registers itself under its name with a static object of this type and gives the exit status.
struct Role {
    Role(const char* name, std::function<int(const std::vector<std::string>&)> body);
};

// The path of the running program.
std::string OwnProgram();

// Wine's stand-in for a part of Windows is known to fall short of it.
bool UnderWine();

// While it lives this process is a user whose rights count, as root's don't, and the folder with all in it is that user's. On
// Windows nothing changes: there an administrator can't write a write-protected file either.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const TempFolder& folder);
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    explicit operator bool() const { return counts_; }  // whether the rights of a mode do

private:
    bool counts_;
};

// Of this program's environment; a null pointer removes it.
void SetVariable(const char* name, const char* value);

}  // namespace twr::testing
