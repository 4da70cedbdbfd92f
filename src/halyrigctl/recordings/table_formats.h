// SPDX-License-Identifier: MIT
// The forms of a table over time that other programs read: CSV, lines of JSON, and tracks by GPX.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "halyrigctl/recordings/table_rows.h"
#include "halyrigctl/recordings/table_units.h"

namespace twr {

struct TableColumn {
    std::string name;  // in UTF-8; no two have the same
    ColumnUnit unit;
};

struct TableLook {
    std::vector<TableColumn> columns;  // as those of the rows
    bool boats = false;                // there is more than one
    bool headerUnits = false;
    bool decimalComma = false;                                 // and then semicolons between the cells
    std::function<void(std::string& out, double utc)> moment;  // appends one as text
};

class TableFormat {
public:
    virtual ~TableFormat() = default;
    virtual void Begin(std::string&) {}
    virtual void Append(std::string& out, const TableRow& row) = 0;
};

std::unique_ptr<TableFormat> MakeCsv(const TableLook& look);
std::unique_ptr<TableFormat> MakeJsonRows(const TableLook& look);

// A waypoint.
struct GpxMark {
    std::string name;
    double latitude, longitude;

    bool operator==(const GpxMark&) const = default;
};

// GPX 1.1, in pieces in their order: the begin, the marks, then for each boat its track.
void AppendGpxBegin(std::string& out);
void AppendGpxMark(std::string& out, const GpxMark& mark);
void AppendGpxEnd(std::string& out);

// The track of one boat, from rows of these channels.
class GpxTrack {
public:
    static const std::vector<ChannelId>& Channels();

    // `step` between rows, ms: a row that comes later than that begins another segment.
    GpxTrack(std::string name, std::int64_t step) : name_(std::move(name)), step_(step) {}

    void Append(std::string& out, const TableRow& row);
    void End(std::string& out);  // a boat without a position has no track

private:
    const std::string name_;
    const std::int64_t step_;
    bool begun_ = false;
    std::int64_t last_ = 0;  // ms
};

}  // namespace twr
