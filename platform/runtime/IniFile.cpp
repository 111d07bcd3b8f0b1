#include "platform/runtime/IniFile.h"

#include <algorithm>

namespace runtime {

namespace {

const QString RootSection = QStringLiteral("general"); ///< its entries stand above all sections

bool IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// ---- names: letters and digits as they are, "%20" and "%U0420" for others, a backslash between two levels
// ----

QByteArray WrittenName(const QString& name) {
    QByteArray written;
    for (const QChar c : name) {
        const bool plain =
            c.unicode() < 0x80 && (c.isLetterOrNumber() || c == u'_' || c == u'-' || c == u'.');
        if (plain)
            written += c.toLatin1();
        else if (c.unicode() <= 0xFF)
            written += '%' + QByteArray::number(c.unicode(), 16).rightJustified(2, '0').toUpper();
        else
            written += "%U" + QByteArray::number(c.unicode(), 16).rightJustified(4, '0').toUpper();
    }
    return written;
}

QString ReadName(const QByteArray& written) {
    QString name;
    for (qsizetype i = 0; i < written.size(); ++i) {
        const char c = written[i];
        const bool wide = c == '%' && written.mid(i + 1, 1).toUpper() == "U";
        const qsizetype digits = wide ? 4 : 2;
        bool ok = false;
        const ushort code = written.mid(i + (wide ? 2 : 1), digits).toUShort(&ok, 16);
        if (c == '%' && ok) {
            name += QChar(code);
            i += digits + (wide ? 1 : 0);
        } else {
            name += c == '\\' ? u'/' : QChar(QLatin1Char(c));
        }
    }
    return name;
}

/// A name may hold what separates the levels.
QString Escaped(QString name) {
    name.replace(u'%', QStringLiteral("%25"));
    name.replace(u'/', QStringLiteral("%2F"));
    name.replace(u'\\', QStringLiteral("%5C"));
    return name;
}

QStringList Escaped(const QStringList& names) {
    QStringList escaped;
    for (const QString& name : names)
        escaped += Escaped(name);
    return escaped;
}

QString PathOf(const QStringList& names) {
    return Escaped(names).join(u'/').toLower();
}

QByteArray HeadOf(const QString& section) {
    const bool mistakable = section.toLower() == RootSection;
    return '[' + (mistakable ? QByteArray("%") : QByteArray()) + WrittenName(Escaped(section)) + ']';
}

/// The section that a head begins, as the first part of paths; empty for the root.
QString SectionOf(const QByteArray& head) {
    const QByteArray inner = head.mid(1, head.indexOf(']') - 1).trimmed();
    const QString name = QString::fromLatin1(inner).toLower();
    if (name == RootSection)
        return {};
    return name == u'%' + RootSection ? RootSection : ReadName(inner).toLower();
}

// ---- values: UTF-8 in quotes, with the escapes of C ----

QByteArray WrittenValue(const QString& value) {
    QByteArray written = value.startsWith(u'@') ? "\"@" : "\"";
    bool behindHex = false;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        const bool control = c.unicode() < 0x20 || c.unicode() == 0x7F || c.isSurrogate();
        const bool prolongs = behindHex && c.unicode() < 0x80 && IsHexDigit(c.toLatin1());
        behindHex = control || prolongs;
        if (behindHex)
            written += "\\x" + QByteArray::number(c.unicode(), 16);
        else if (c == u'"' || c == u'\\')
            written += QByteArray("\\") + c.toLatin1();
        else
            written += QString(c).toUtf8();
    }
    return written + '"';
}

/// The digits of an escape from a place on; the place is then behind them.
QChar ReadDigits(const QByteArray& written, qsizetype& place, int base) {
    int code = 0;
    for (; place < written.size() && IsHexDigit(written[place]); ++place) {
        const int digit = written.mid(place, 1).toInt(nullptr, 16);
        if (digit >= base)
            break;
        code = code * base + digit;
    }
    return {static_cast<ushort>(code)};
}

QString ReadValue(const QByteArray& written) {
    constexpr QByteArrayView letters("abfnrtv");
    constexpr QByteArrayView meanings("\a\b\f\n\r\t\v");
    QString value;
    QByteArray plain; ///< UTF-8 that is collected, as one character may be many bytes
    const auto flush = [&] { value += QString::fromUtf8(std::exchange(plain, {})); };
    bool quoted = false;
    qsizetype solid = 0; ///< of that, without blanks that may be at the end
    for (qsizetype i = 0; i < written.size();) {
        const char c = written[i++];
        if (c == '"') {
            quoted = !quoted;
            solid = plain.size();
        } else if (c == ';' && !quoted) {
            plain.truncate(solid);
            break; // a remark
        } else if (c != '\\' || i == written.size()) {
            plain += c;
            solid = quoted || c != ' ' ? plain.size() : solid;
        } else if (const char escape = written[i]; escape == 'x') {
            flush();
            value += ReadDigits(written, ++i, 16);
        } else if (escape >= '0' && escape <= '7') {
            flush();
            value += ReadDigits(written, i, 8);
        } else {
            const qsizetype place = letters.indexOf(escape);
            plain += place < 0 ? escape : meanings[place];
            ++i;
        }
    }
    flush();
    if (value == u"@Invalid()")
        return {};
    return value.startsWith(u"@@") ? value.mid(1) : value;
}

} // namespace

IniFile::IniFile(const QByteArray& text) {
    QString section;
    for (QByteArray bytes : text.split('\n')) {
        if (bytes.endsWith('\r'))
            bytes.chop(1);
        Line line{bytes, section};
        const QByteArray trimmed = bytes.trimmed();
        const qsizetype equals = trimmed.indexOf('=');
        if (trimmed.startsWith('[')) {
            section = SectionOf(trimmed);
            line.path = section;
        } else if (equals > 0 && !trimmed.startsWith(';') && !trimmed.startsWith('#')) {
            line.path = (section.isEmpty() ? section : section + u'/') +
                        ReadName(trimmed.left(equals).trimmed()).toLower();
            line.isEntry = true;
        }
        m_lines.push_back(line);
    }
    if (m_lines.back().bytes.isEmpty())
        m_lines.pop_back();
}

QByteArray IniFile::Text() const {
    QByteArray text;
    for (const Line& line : m_lines)
        text += line.bytes + '\n';
    return text;
}

std::optional<QString> IniFile::Value(const QStringList& names) const {
    const QString path = PathOf(names);
    const auto line = std::find_if(m_lines.rbegin(), m_lines.rend(),
                                   [&](const Line& each) { return each.isEntry && each.path == path; });
    if (line == m_lines.rend())
        return std::nullopt;
    return ReadValue(line->bytes.mid(line->bytes.indexOf('=') + 1).trimmed());
}

void IniFile::Put(const QStringList& names, const QString& value) {
    Line line{{}, PathOf(names), true};
    QByteArrayList keys;
    for (const QString& name : names.mid(1))
        keys += WrittenName(Escaped(name));
    line.bytes = keys.join('\\') + '=' + WrittenValue(value);
    Remove(names);
    const QString section = PathOf(names.mid(0, 1));
    auto head = std::find_if(m_lines.begin(), m_lines.end(), [&](const Line& each) {
        return !each.isEntry && each.path == section && each.bytes.trimmed().startsWith('[');
    });
    if (head == m_lines.end())
        head = m_lines.insert(m_lines.end(), Line{HeadOf(names.front()), section});
    m_lines.insert(head + 1, line);
}

bool IniFile::Remove(const QStringList& names) {
    const QString path = PathOf(names);
    return std::erase_if(m_lines, [&](const Line& line) {
               return line.isEntry && (line.path == path || line.path.startsWith(path + u'/'));
           }) != 0;
}

} // namespace runtime
