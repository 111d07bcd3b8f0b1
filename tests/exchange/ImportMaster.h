#pragma once

#include "exchange/frmImportMasterStep1.h"
#include "tests/exchange/ExchangeTest.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
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

    void TypeFile(const QString& path) const { Control<QLineEdit>("txtFile").setText(path); }
    void Go(int step) const {
        QTabBar* bar = Control<QTabWidget>("tabImport").tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(step).center());
    }
    void PressSpaceOn(int item) const {
        Parameters().setCurrentRow(item);
        QTest::keyClick(&Parameters(), Qt::Key_Space);
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

} // namespace test
