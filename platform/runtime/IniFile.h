#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace runtime {

/// The text of a settings file, in the form that QSettings knows as IniFormat: "[section]" and
/// "key\key=value". An entry is addressed by the names on the way to it, case ignored, from the section on;
/// lines that nobody changes keep their bytes.
class IniFile {
public:
    explicit IniFile(const QByteArray& text);

    QByteArray Text() const;
    std::optional<QString> Value(const QStringList& names) const;
    void Put(const QStringList& names, const QString& value);
    /// Takes the entry away, and all below it; false if there is none.
    bool Remove(const QStringList& names);

private:
    struct Line {
        QByteArray bytes; ///< without its end
        QString path;     ///< the names joined by slashes, in small letters; of a section's head that section
        bool isEntry = false;
    };

    std::vector<Line> m_lines;
};

} // namespace runtime
