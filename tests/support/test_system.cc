#include "support/test_system.h"

#include "base/wide_text.h"
#include "platform/paths.h"

namespace twr::testing {

Roots TestRoots(const std::string& name, const std::u16string& folder) {
    Roots roots;
    roots.namePrefix = u"HalyrigTest_" + FromBytes(name) + u"_";
    // Where paths are parted by slashes the registry is a file, elsewhere a key.
    roots.registry =
        kPathSeparator == u'/' ? JoinPath(folder, u"config/registry.reg") : u"Software\\HalyrigTest\\" + FromBytes(name);
    roots.programData = JoinPath(folder, u"ProgramData");
    roots.locks = {{folder}};
    return roots;
}

std::vector<std::string> TestSystem::Arguments() const { return {name, ToUtf8(folder.Text())}; }

std::unique_ptr<System> SystemOf(const std::vector<std::string>& arguments) {
    return MakeSystem(TestRoots(arguments[0], FromUtf8(arguments[1])));
}

}  // namespace twr::testing
