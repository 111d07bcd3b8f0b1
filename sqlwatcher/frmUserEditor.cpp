#include "sqlwatcher/frmUserEditor.h"

#include "platform/forms/Controls.h"
#include "platform/forms/EscapeWatch.h"
#include "platform/forms/FlexGrid.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"
#include "shared/Declaration.h"

#include <QFontDatabase>
#include <QPlainTextEdit>

#include <algorithm>
#include <limits>

namespace {

// Twips of the Resize rule.
constexpr int LeastHeight = 4000;
constexpr int BesideGrid = 390;
constexpr int AroundGrid = 2910;

// Twips of what the rule leaves in place.
constexpr int Margin = 120;
constexpr int Gap = 60;
constexpr int GridTop = 2340;

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmUserEditor");
    design.caption = QStringLiteral("SQL наблюдатель");
    design.size = QSize(720, 460);
    return design;
}

/// The editor's own signs for the end of a line, as line breaks.
QString WithLineBreaks(QString text) {
    return text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
}

} // namespace

frmUserEditor::frmUserEditor()
    : Form(WindowDesign()) {
}

void frmUserEditor::CreateControls(QWidget* surface) {
    QLabel* Label2 = forms::MakeLabel(QStringLiteral("Label2"), QStringLiteral("Запрос:"), surface);
    Label3 = forms::MakeLabel(QStringLiteral("Label3"), QStringLiteral("(F9 - выполнить)"), surface);
    QLabel* Label1 = forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("Результат:"), surface);

    txtSQLEditor = new QPlainTextEdit(surface);
    forms::NameField(txtSQLEditor, QStringLiteral("txtSQLEditor"), Label2);
    Label3->setBuddy(txtSQLEditor);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (surface->font().pointSizeF() > 0)
        font.setPointSizeF(surface->font().pointSizeF());
    txtSQLEditor->setFont(font);
    txtSQLEditor->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtSQLEditor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    txtSQLEditor->setTabChangesFocus(true);

    gridSQLEditor = new forms::FlexGrid(2, 0, surface);
    gridSQLEditor->AllowSelectAll();
    forms::NameField(gridSQLEditor, QStringLiteral("gridSQLEditor"), Label1);

    for (QLabel* label : {Label1, Label2, Label3.data()})
        label->adjustSize();
    const int left = forms::ToPixels(Margin);
    const int gap = forms::ToPixels(Gap);
    const int gridTop = forms::ToPixels(GridTop);
    const int textTop = left + Label2->height() + gap;
    const int resultTop = gridTop - gap - Label1->height();
    Label2->move(left, left);
    Label3->move(left, left);
    txtSQLEditor->move(left, textTop);
    txtSQLEditor->setFixedHeight(resultTop - 2 * gap - textTop);
    Label1->move(left, resultTop);
    gridSQLEditor->move(left, gridTop);
}

bool frmUserEditor::Form_KeyDown(int key, Qt::KeyboardModifiers /*modifiers*/) {
    if (key != Qt::Key_F9)
        return false;
    ApplyLeavingRules();
    forms::Attempt(
        QStringLiteral("frmUserEditor функция Form_KeyDown:"), [this] { RunQuery(); },
        forms::Icon::Exclamation);
    return true;
}

QString frmUserEditor::Query() const {
    const QString selected = txtSQLEditor->textCursor().selectedText();
    return WithLineBreaks(selected.isEmpty() ? txtSQLEditor->document()->toRawText() : selected);
}

void frmUserEditor::RunQuery() {
    const forms::BusyPointer busy;
    {
        forms::EscapeWatch escape;
        engine::Recordset rows = gDatabase->OpenRecordset(Query(), engine::dbOpenDynaset,
                                                          [&escape] { return escape.WasPressed(); });
        ShowResult(rows);
    }
    Form_Resize();
}

void frmUserEditor::ShowResult(engine::Recordset& rows) {
    const forms::FlexGrid::Filling filling(*gridSQLEditor);
    gridSQLEditor->Clear();
    gridSQLEditor->SetCols(rows.FieldsCount());
    for (int column = 0; column < rows.FieldsCount(); ++column) {
        gridSQLEditor->SetTextMatrix(0, column, rows.Fields(column).Name());
        gridSQLEditor->SetColAlignment(column, forms::FlexGrid::LeftBottom);
    }
    if (rows.RecordCount() == 0) {
        gridSQLEditor->SetRows(2);
        return;
    }
    rows.MoveLast();
    rows.MoveFirst();
    FillRows(rows);
}

void frmUserEditor::FillRows(engine::Recordset& rows) {
    if (rows.RecordCount() >= std::numeric_limits<int>::max())
        runtime::Raise(runtime::OutOfMemory);
    gridSQLEditor->SetRows(static_cast<int>(rows.RecordCount()) + 1);

    std::vector<engine::Field> fields;
    fields.reserve(static_cast<std::size_t>(rows.FieldsCount()));
    for (int column = 0; column < rows.FieldsCount(); ++column)
        fields.push_back(rows.Fields(column));
    for (int row = 1; !rows.EndOfFile(); ++row) {
        for (int column = 0; column < static_cast<int>(fields.size()); ++column) {
            const QString text = fields[static_cast<std::size_t>(column)].Text();
            if (!text.isEmpty())
                gridSQLEditor->SetTextMatrix(row, column, text);
        }
        rows.MoveNext();
    }
}

void frmUserEditor::Form_Resize() {
    if (IsMinimised())
        return;
    const int gridWidth = std::max(Width() - BesideGrid, 0);
    gridSQLEditor->resize(forms::ToPixels(gridWidth), gridSQLEditor->height());
    if (Height() < LeastHeight)
        SetHeight(LeastHeight);
    gridSQLEditor->resize(gridSQLEditor->width(), forms::ToPixels(Height() - AroundGrid));
    txtSQLEditor->resize(gridSQLEditor->width(), txtSQLEditor->height());
    Label3->move(gridSQLEditor->geometry().right() + 1 - Label3->width(), Label3->y());
    forms::StretchLastColumn(*gridSQLEditor, gridWidth);
}
