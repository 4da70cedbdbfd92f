#include "platform/xml.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/linux/xml/xml_reader.h"
#include "platform/linux/xml/xml_writer.h"

namespace twr {
namespace {

class XmlFiles final : public Xml {
public:
    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override {
        auto source = MakeFiles({})->Open(path);
        return source ? ReadXml(std::move(source)) : nullptr;
    }

    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view path) override {
        Descriptor file = OpenPlainFile(NativePath(path), O_WRONLY | O_CREAT);
        if (!file || ftruncate(file.Get(), 0) != 0) return nullptr;
        return WriteXml(std::move(file));
    }
};

}  // namespace

std::unique_ptr<Xml> MakeXml() { return std::make_unique<XmlFiles>(); }

}  // namespace twr
