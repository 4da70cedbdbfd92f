// The header line of a recording: {"format":"halyrig-record","version":1,...}.
#pragma once

namespace twr {

inline constexpr const char* kRecordingFormat = "halyrig-record";
inline constexpr int kRecordingVersion = 1;  // of this and all earlier formats that are read

}  // namespace twr
