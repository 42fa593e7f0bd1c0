#pragma once

#include <array>
#include <string>
#include <string_view>

namespace corvanta {

/// The columns of a stored request, in the order in which they are read and inserted. Beside them is `owner`,
/// which only the runs of a request write and read.
struct RequestColumn {
    enum Place {
        primaryKey,
        id,
        status,
        outputPath,
        outputBookmark,
        type,
        rawData,
        processId,
        error,
        createdAt,
        updatedAt,
        count
    };
    static constexpr std::array<std::string_view, count> names = {
        "primaryKey", "id",        "status", "outputPath", "outputBookmark", "type",
        "rawData",    "processId", "error",  "createdAt",  "updatedAt"};
};

/// Those of an input file.
struct InputFileColumn {
    enum Place { request, index, path, pathBookmark, count };
    static constexpr std::array<std::string_view, count> names = {"request", R"("index")", "path",
                                                                  "pathBookmark"};
};

/// "r.primaryKey, r.id, ..." for "r.".
template <typename Columns>
std::string columnList(std::string_view prefix = {}) {
    std::string list;
    for (const std::string_view name : Columns::names) {
        list.append(list.empty() ? "" : ", ").append(prefix).append(name);
    }
    return list;
}

/// Inserts a row whose values are bound at their column's place plus 1; what is not bound stays NULL.
template <typename Columns>
std::string insertionInto(std::string_view table) {
    std::string values = "?";
    for (int place = 1; place < Columns::count; ++place) {
        values += ", ?";
    }
    return "INSERT INTO " + std::string(table) + " (" + columnList<Columns>() + ") VALUES (" + values + ")";
}

} // namespace corvanta
