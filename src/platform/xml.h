// SPDX-License-Identifier: MIT
// Reading and writing XML files.
#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/findings.h"

namespace twr {

struct XmlAttribute {
    std::u16string name;  // without its prefix
    std::u16string value;
};

struct XmlElement {
    std::u16string name;                   // without its prefix
    std::vector<XmlAttribute> attributes;  // in the order of the file, declarations of name spaces left out
    std::size_t line = 0;                  // of its start tag, from 1
};

// As they stand in a file, for messages.
std::u16string Spelled(const XmlAttribute& attribute);
std::u16string Spelled(const XmlElement& element);  // without brackets

// Where a document stops being XML that is read, or can't be read at all.
struct XmlFault {
    std::size_t line, column;          // from 1; 0 for the file as a whole
    std::u16string text;               // what is wrong, in the words of the parser or the system; may be empty
    Flaw flaw = Flaw::kNotWellFormed;  // or kReadFailed
};

// Of a file larger than kLargestFile.
inline constexpr std::u16string_view kTooLarge = u"it is larger than 64 MiB";

// No ordinary file nests its elements deeper. Open elements take memory.
inline constexpr int kDeepestElement = 100'000;

// Gives the elements of a file one by one, in the order of their start tags, whatever their depth.
class XmlReader {
public:
    virtual ~XmlReader() = default;

    // False at the end of the document, at byte kLargestFile, below kDeepestElement and at its first fault, a document type
    // declaration included; all elements before it have been given by then, and none follows.
    virtual bool Next(XmlElement& element) = 0;

    // Why Next has returned false; nullopt at the end of a sound document.
    virtual std::optional<XmlFault> Fault() const = 0;
};

// Writes an indented document: mark and declaration of UTF-8, lines ended by CR LF, two blanks a level. Each operation returns
// false on failure.
class XmlWriter {
public:
    virtual ~XmlWriter() = default;

    virtual bool StartElement(std::u16string_view name) = 0;
    virtual bool Attribute(std::u16string_view name, std::u16string_view value) = 0;
    virtual bool Comment(std::u16string_view text) = 0;
    virtual bool EndElement() = 0;

    // Closes all open elements and flushes.
    virtual bool Finish() = 0;
};

class Files;

// In place of a reader where a file can't be opened: nullptr if there is none.
std::unique_ptr<XmlReader> UnopenedXml(const Files& files, std::u16string_view path);

class Xml {
public:
    virtual ~Xml() = default;

    // nullptr if there is no such file. One that can't be opened has a fault and no element. The encoding is that of the mark or
    // the declaration.
    virtual std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) = 0;

    // Creates the file or empties an existing one, and writes the declaration; nullptr on failure.
    virtual std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view path) = 0;
};

}  // namespace twr
