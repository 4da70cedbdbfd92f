// SPDX-License-Identifier: MIT
// The files of src/page, packed into the program by the build.
#pragma once
#include <span>
#include <string_view>

namespace twr {

struct PageFile {
    std::string_view name;   // its path below src/page
    std::string_view tag;    // another one if the contents are others; in quotes, as HTTP has it
    std::string_view bytes;  // by gzip
};

std::span<const PageFile> PageFiles();

// The page of a report, in one piece, by gzip; its data goes in the place of kReportData.
std::string_view ReportPage();
inline constexpr std::string_view kReportData = "{{data}}";

}  // namespace twr
