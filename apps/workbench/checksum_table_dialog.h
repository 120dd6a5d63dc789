// The project's checksum table, as a page of its settings: for each of the
// ten checksum codes, the calculation the runtime model runs (one of the
// well-known definitions, or one loaded from a checksums.json file) and the
// order of a binary checksum's bytes on the wire. Its parameters and check
// value are shown beside it, so that a person can hold them against a
// device's manual. OK hands back the table; Cancel changes nothing.
#pragma once
#include <QDialog>
#include <vector>

#include "runtime_model/checksum_catalogue.h"

class QComboBox;
class QLabel;
class QTableWidget;

namespace qx {

class ChecksumTableDialog : public QDialog {
    Q_OBJECT
public:
    ChecksumTableDialog(const model::ChecksumTable& table, QWidget* parent = nullptr);
    const model::ChecksumTable& Table() const { return table_; }

    // The definition column's and the byte order column's boxes of a code.
    QComboBox* DefinitionBox(int32_t code) const;
    QComboBox* ByteOrderBox(int32_t code) const;
    // Reads a checksums.json into the page; false with the reason shown.
    bool LoadFile(const QString& path);
    bool SaveFile(const QString& path);

private:
    void fill();
    void showRow(int32_t code);
    void choose(int32_t code, int index);

    model::ChecksumTable table_;
    // What each code's box offers: the well-known definitions, and the
    // code's own when it is none of them.
    std::vector<std::vector<model::ChecksumDefinition>> offered_;
    QTableWidget* grid_;
    QLabel* explanation_;
};

}  // namespace qx
