#pragma once

#include "exchange/frmImportMasterStep1.h"
#include "platform/runtime/Codec1251.h"
#include "tests/exchange/ExchangeTest.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

namespace test {

/// The import master, driven by mouse and keys.
class ImportMaster {
public:
    ImportMaster() { form->Show(); }

    template <class T>
    T& Control(const char* name) const {
        return *form->Surface()->findChild<T*>(name);
    }
    QListWidget& Parameters() const { return Control<QListWidget>("lstParameter"); }
    QPushButton& Import() const { return Control<QPushButton>("cmdImport"); }
    QTabWidget& Tabs() const { return Control<QTabWidget>("tabImport"); }

    /// Without a window manager nobody brings the main window back behind a dialog.
    void Activate() const {
        QWidget* window = form->Surface()->window();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void TypeFile(const QString& path) const {
        auto& field = Control<QLineEdit>("txtFile");
        field.setText(path);
    }
    void Go(int step) const {
        QTabBar* bar = Tabs().tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(step).center());
    }
    void Semicolon() const { Control<QRadioButton>("optDelimiter_1").click(); }

    QStringList Items() const {
        QStringList items;
        for (int i = 0; i < Parameters().count(); ++i)
            items.append(Parameters().item(i)->text());
        return items;
    }
    QStringList Ticked() const {
        QStringList items;
        for (int i = 0; i < Parameters().count(); ++i) {
            if (Parameters().item(i)->checkState() == Qt::Checked)
                items.append(Parameters().item(i)->text());
        }
        return items;
    }

    void PressSpaceOn(int item) const {
        Parameters().setCurrentRow(item);
        QTest::keyClick(&Parameters(), Qt::Key_Space);
    }
    void ClickBoxOf(int item) const {
        const QRect row = Parameters().visualItemRect(Parameters().item(item));
        QTest::mouseClick(Parameters().viewport(), Qt::LeftButton, Qt::NoModifier,
                          {row.left() + row.height() / 2, row.center().y()});
    }
    void Tick(const QStringList& items) const {
        for (int i = 0; i < Parameters().count(); ++i) {
            if (items.contains(Parameters().item(i)->text()))
                PressSpaceOn(i);
        }
    }
    void PressImport() const { QTest::mouseClick(&Import(), Qt::LeftButton); }

    std::shared_ptr<frmImportMasterStep1> form = forms::Form::Create<frmImportMasterStep1>();
};

inline QString ImportedAll(int updated, int inserted) {
    return QStringLiteral("Импорт записей успешно завершен. Обновлено записей: %1. Добавлено записей: %2")
        .arg(updated)
        .arg(inserted);
}

inline QString ImportedWithErrors(int lines, int errors) {
    return QStringLiteral("Импорт записей завершен с ошибками. Обработано %1 записей, из них с ошибками: %2.")
        .arg(lines)
        .arg(errors);
}

/// Imports a file in one go; the master ends by the box.
inline void ImportFile(const QString& path, const QStringList& items, const QString& result,
                       bool semicolon = false) {
    const ImportMaster master;
    master.TypeFile(path);
    if (semicolon)
        master.Semicolon();
    master.Go(2);
    master.Tick(items);
    Answers answers;
    answers.Box(result, forms::Icon::Information);
    master.PressImport();
    EXPECT_TRUE(answers.Done());
    EXPECT_FALSE(master.form->IsLoaded());
}

} // namespace test
