#include "exchange/ExtractToCSV.h"

#include "exchange/CsvColumns.h"
#include "exchange/RowLoop.h"
#include "exchange/TargetFile.h"
#include "exchange/frmSelectDelimiter.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "shared/Declaration.h"

#include <optional>
#include <vector>

namespace exchange {

namespace {

/// Unloads the dialog when it goes.
struct Unloader {
    void operator()(frmSelectDelimiter* dialog) const { dialog->Unload(); }
};

/// The columns of a card's row, looked up once for the whole run.
class CardRow {
public:
    CardRow(const engine::Recordset& rows, engine::Recordset& phones)
        : m_phones(phones)
        , m_id(rows.Fields(u"a01clid"))
        , m_last(rows.Fields(u"a01last"))
        , m_first(rows.Fields(u"a01frst"))
        , m_middle(rows.Fields(u"a01midl"))
        , m_memo(rows.Fields(u"a01memo"))
        , m_phone(phones.Fields(u"a02cval")) {}

    QString Cell(const CsvColumnDesign& design) {
        switch (design.column) {
        case CsvColumn::FirstName:
            return m_first.Text();
        case CsvColumn::LastName:
            return m_last.Text();
        case CsvColumn::MiddleName:
            return m_middle.Text();
        case CsvColumn::Name:
            return m_last.Text() + u' ' + m_first.Text() + u' ' + m_middle.Text();
        case CsvColumn::HomePhone:
        case CsvColumn::MobilePhone:
        case CsvColumn::BusinessPhone:
            m_phones.FindFirst(QStringLiteral("a02clid= ") + m_id.Text() + QStringLiteral("AND a02code = ") +
                               QString::number(design.phoneCode));
            return m_phones.NoMatch() ? QString() : m_phone.Text();
        case CsvColumn::Notes:
            return m_memo.Text();
        }
        Q_UNREACHABLE();
    }

private:
    engine::Recordset& m_phones;
    engine::Field m_id;
    engine::Field m_last;
    engine::Field m_first;
    engine::Field m_middle;
    engine::Field m_memo;
    engine::Field m_phone;
};

/// One export. Its end releases what it still holds.
class CsvExport {
public:
    void Run(forms::Form& list, const QString& strCurrentSQL);

private:
    bool AskColumns();
    bool WriteRows();
    void Finish();

    // The members go from the last to the first: dialog, file, result set of the list, result set of the
    // phones.
    engine::Recordset m_phones;
    engine::Recordset m_rows;
    std::optional<runtime::OutputFile> m_file;
    std::shared_ptr<frmSelectDelimiter> m_form = forms::Form::Default<frmSelectDelimiter>();
    std::unique_ptr<frmSelectDelimiter, Unloader> m_dialog;

    QChar m_delimiter;
    runtime::Int16 m_written;
};

void CsvExport::Run(forms::Form& list, const QString& strCurrentSQL) {
    const QString fileName = AskTargetFile(list, QStringLiteral("Файл с разделителями (*.csv)|*.csv"));
    if (fileName.isEmpty())
        return;
    if (runtime::IsFile(fileName)) {
        if (!AskOverwrite(fileName))
            return;
        runtime::Kill(fileName);
    }
    if (!AskColumns())
        return;
    m_file.emplace(fileName);
    m_rows = gDatabase->OpenRecordset(strCurrentSQL, engine::dbOpenDynaset);
    if (m_rows.RecordCount() != 0 && !WriteRows())
        return;
    Finish();
}

/// False if the user gave up; the dialog then stays loaded, so that it comes back as it is.
bool CsvExport::AskColumns() {
    m_form->Show(true);
    if (runtime::TextToNumber(m_form->Tag()) == 0)
        return false;
    m_dialog.reset(m_form.get());
    m_delimiter = m_form->Delimiter();
    return true;
}

/// False, after a message, if no column is ticked.
bool CsvExport::WriteRows() {
    m_rows.MoveLast();
    m_rows.MoveFirst();
    m_phones = gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM a02"), engine::dbOpenDynaset);

    std::vector<CsvColumnDesign> columns;
    QStringList headers;
    for (const CsvColumnDesign& design : CsvColumns()) {
        if (!m_form->IsChecked(design.item))
            continue;
        columns.push_back(design);
        headers.append(design.header);
    }
    if (columns.empty()) {
        forms::MsgBox(QStringLiteral("Не выбран ни один параметр для экспорта."), forms::Icon::Exclamation);
        return false;
    }
    m_file->Print(headers.join(m_delimiter));

    CardRow card(m_rows, m_phones);
    QString line;
    ForEachRow(m_rows.RecordCount(), [&](int) {
        line.clear();
        bool filled = false;
        for (const CsvColumnDesign& column : columns) {
            if (&column != &columns.front())
                line += m_delimiter;
            const QString cell = card.Cell(column);
            filled = filled || !cell.isEmpty();
            line += cell;
        }
        if (filled) {
            m_file->Print(line);
            ++m_written;
        }
        m_rows.MoveNext();
    });
    return true;
}

void CsvExport::Finish() {
    m_dialog.reset();
    m_rows = {};
    m_phones = {};
    m_file->Close();
    forms::MsgBox(QStringLiteral("Экспорт данных в CSV файл успешно завершен. Экспортированно ") +
                      QString::number(m_written) + QStringLiteral(" записей."),
                  forms::Icon::Information);
}

} // namespace

void ExtractToCSV(forms::Form& list, const QString& strCurrentSQL) {
    CsvExport run;
    forms::Attempt(QStringLiteral("frmRecords функция ExtractToCSV:"), [&] { run.Run(list, strCurrentSQL); });
}

} // namespace exchange
