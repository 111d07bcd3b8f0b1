#pragma once

#include <QString>

#include <optional>
#include <tuple>

namespace runtime {

/// What a file is, whatever its path is spelled like: two paths of one file give the same identity.
struct FileIdentity {
    quint64 device = 0;
    quint64 file = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    friend bool operator<(const FileIdentity& left, const FileIdentity& right) {
        return std::tie(left.device, left.file) < std::tie(right.device, right.file);
    }
};

/// None if there is no file at the path. Links are followed; the file is not opened.
std::optional<FileIdentity> IdentityOf(const QString& path);

} // namespace runtime
