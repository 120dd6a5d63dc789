#include "checksum_table_dialog.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QTableWidget>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "runtime_model/checksum_table_json.h"

namespace qx {

namespace {

enum Column { CodeColumn, DefinitionColumn, OrderColumn, ParametersColumn, CheckColumn, ColumnCount };

QString hex(uint32_t value, int32_t width) {
    return QStringLiteral("0x%1")
        .arg(value, std::max(2, (width + 3) / 4), 16, QLatin1Char('0'))
        .toUpper()
        .replace(QStringLiteral("0X"), QStringLiteral("0x"));
}

// The parameters in the catalogue's words: "poly 0x8005, init 0xFFFF,
// reflected, xorout 0x0000", or the rule of a definition that is no CRC.
QString parametersOf(const model::ChecksumDefinition& d) {
    switch (d.Rule) {
        case model::ChecksumRule::Crc: {
            QString text = QStringLiteral("%1 bits, poly %2, init %3")
                               .arg(d.Width)
                               .arg(hex(d.Polynomial, d.Width), hex(d.Init, d.Width));
            if (d.ReflectIn || d.ReflectOut)
                text += d.ReflectIn && d.ReflectOut ? QStringLiteral(", reflected")
                                                    : QStringLiteral(", reflected %1").arg(d.ReflectIn ? "in" : "out");
            return text + QStringLiteral(", xorout %1").arg(hex(d.XorOut, d.Width));
        }
        case model::ChecksumRule::Sum:
            return QStringLiteral("sum of the bytes, %1 bits").arg(d.Width);
        case model::ChecksumRule::Xor:
            return QStringLiteral("exclusive or of the bytes");
        case model::ChecksumRule::TwosComplement:
            return QStringLiteral("two's complement of the 8-bit sum");
        case model::ChecksumRule::LrcOfHexText:
            return QStringLiteral("LRC of the bytes the hexadecimal text stands for");
    }
    return {};
}

}  // namespace

ChecksumTableDialog::ChecksumTableDialog(const model::ChecksumTable& table, QWidget* parent)
    : QDialog(parent), table_(table), grid_(new QTableWidget(this)), explanation_(new QLabel(this)) {
    setObjectName(QStringLiteral("ChecksumTableDialog"));
    setWindowTitle(QStringLiteral("Checksums"));
    auto* layout = new QVBoxLayout(this);
    explanation_->setWordWrap(true);
    explanation_->setText(QStringLiteral(
        "What each checksum code of the project's messages stands for when the workbench shows wire bytes and "
        "decodes captures. The controller's own calculation is not written in the images: hold these against the "
        "device's manual. The check value is the result over the text \"123456789\"."));
    layout->addWidget(explanation_);
    grid_->setObjectName(QStringLiteral("checksumGrid"));
    grid_->setColumnCount(ColumnCount);
    grid_->setHorizontalHeaderLabels({QStringLiteral("Code"), QStringLiteral("Calculation"),
                                      QStringLiteral("Binary byte order"), QStringLiteral("Parameters"),
                                      QStringLiteral("Check")});
    grid_->setRowCount(model::LastCalculationCode);
    grid_->verticalHeader()->hide();
    grid_->setSelectionMode(QAbstractItemView::NoSelection);
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    layout->addWidget(grid_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* defaults = buttons->addButton(QStringLiteral("&Defaults"), QDialogButtonBox::ResetRole);
    QPushButton* load = buttons->addButton(QStringLiteral("&Load..."), QDialogButtonBox::ActionRole);
    QPushButton* save = buttons->addButton(QStringLiteral("&Save..."), QDialogButtonBox::ActionRole);
    defaults->setObjectName(QStringLiteral("defaultsButton"));
    load->setObjectName(QStringLiteral("loadButton"));
    save->setObjectName(QStringLiteral("saveButton"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(defaults, &QPushButton::clicked, this, [this] {
        table_ = model::ChecksumTable::Default();
        fill();
    });
    connect(load, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Load checksums"), QString(),
                                                          QStringLiteral("Checksum tables (*.json)"));
        if (!path.isEmpty()) LoadFile(path);
    });
    connect(save, &QPushButton::clicked, this, [this] {
        const QString path =
            QFileDialog::getSaveFileName(this, QStringLiteral("Save checksums"), QStringLiteral("checksums.json"),
                                         QStringLiteral("Checksum tables (*.json)"));
        if (!path.isEmpty()) SaveFile(path);
    });
    layout->addWidget(buttons);
    fill();
    resize(980, 440);
}

QComboBox* ChecksumTableDialog::DefinitionBox(int32_t code) const {
    return qobject_cast<QComboBox*>(grid_->cellWidget(code - 1, DefinitionColumn));
}

QComboBox* ChecksumTableDialog::ByteOrderBox(int32_t code) const {
    return qobject_cast<QComboBox*>(grid_->cellWidget(code - 1, OrderColumn));
}

void ChecksumTableDialog::fill() {
    offered_.assign(model::LastCalculationCode, model::knownChecksums());
    for (int32_t code = model::FirstCalculationCode; code <= model::LastCalculationCode; ++code) {
        const int row = code - 1;
        std::vector<model::ChecksumDefinition>& offered = offered_[static_cast<size_t>(row)];
        const model::ChecksumDefinition& current = table_.Definition(code);
        // The byte order is a column of its own: the definitions are offered
        // by their calculation alone.
        const auto sameCalculation = [&current](model::ChecksumDefinition d) {
            d.LowByteFirst = current.LowByteFirst;
            return d == current;
        };
        auto found = std::find_if(offered.begin(), offered.end(), sameCalculation);
        if (found == offered.end()) found = offered.insert(offered.end(), current);

        grid_->setItem(row, CodeColumn,
                       new QTableWidgetItem(QStringLiteral("%1  %2").arg(code).arg(
                           QString::fromStdWString(model::calculationName(code)))));
        auto* definition = new QComboBox(grid_);
        definition->setObjectName(QStringLiteral("definition%1").arg(code));
        for (const model::ChecksumDefinition& d : offered) definition->addItem(QString::fromStdString(d.Name));
        definition->setCurrentIndex(static_cast<int>(found - offered.begin()));
        connect(definition, &QComboBox::activated, this, [this, code](int index) { choose(code, index); });
        grid_->setCellWidget(row, DefinitionColumn, definition);

        auto* order = new QComboBox(grid_);
        order->setObjectName(QStringLiteral("byteOrder%1").arg(code));
        order->addItems({QStringLiteral("high byte first"), QStringLiteral("low byte first")});
        order->setCurrentIndex(current.LowByteFirst ? 1 : 0);
        connect(order, &QComboBox::activated, this, [this, code](int index) {
            model::ChecksumDefinition d = table_.Definition(code);
            d.LowByteFirst = index == 1;
            table_.Definition(code, d);
        });
        grid_->setCellWidget(row, OrderColumn, order);
        showRow(code);
    }
    grid_->resizeColumnsToContents();
    grid_->horizontalHeader()->setStretchLastSection(true);
}

void ChecksumTableDialog::showRow(int32_t code) {
    const model::ChecksumDefinition& d = table_.Definition(code);
    grid_->setItem(code - 1, ParametersColumn, new QTableWidgetItem(parametersOf(d)));
    grid_->setItem(code - 1, CheckColumn, new QTableWidgetItem(hex(d.Check, d.Width)));
}

void ChecksumTableDialog::choose(int32_t code, int index) {
    const auto& offered = offered_[static_cast<size_t>(code - 1)];
    if (index < 0 || static_cast<size_t>(index) >= offered.size()) return;
    model::ChecksumDefinition d = offered[static_cast<size_t>(index)];
    // A definition chosen brings its own byte order (Modbus RTU's CRC goes
    // low byte first).
    table_.Definition(code, d);
    ByteOrderBox(code)->setCurrentIndex(d.LowByteFirst ? 1 : 0);
    showRow(code);
}

bool ChecksumTableDialog::LoadFile(const QString& path) {
    QFile file(path);
    const auto refuse = [this, &path](const QString& why) {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Load checksums"),
                        QStringLiteral("%1 cannot be loaded: %2").arg(path, why), QMessageBox::Ok, this);
        box.setObjectName(QStringLiteral("ChecksumLoadError"));
        box.exec();
        return false;
    };
    if (!file.open(QIODevice::ReadOnly)) return refuse(file.errorString());
    if (file.size() > (1 << 20)) return refuse(QStringLiteral("it is larger than 1 MB"));
    const QByteArray text = file.readAll();
    try {
        table_ = model::checksumTableFromJson(std::string_view(text.constData(), static_cast<size_t>(text.size())));
    } catch (const RuntimeError& e) {
        return refuse(QString::fromStdWString(e.Description()));
    }
    fill();
    return true;
}

bool ChecksumTableDialog::SaveFile(const QString& path) {
    QSaveFile file(path);
    const std::string json = model::checksumTableToJson(table_);
    if (file.open(QIODevice::WriteOnly) &&
        file.write(json.data(), static_cast<qint64>(json.size())) == static_cast<qint64>(json.size()) && file.commit())
        return true;
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Save checksums"),
                    QStringLiteral("%1 cannot be saved: %2").arg(path, file.errorString()), QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("ChecksumSaveError"));
    box.exec();
    return false;
}

}  // namespace qx
