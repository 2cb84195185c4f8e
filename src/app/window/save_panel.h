#pragma once

#include <QFileDialog>

namespace vornic {

/// The panel that asks where a movie is saved.
///
/// Made by WindowQuestions for one question, on the main thread. Whatever name is typed gets the suffix of the movies
/// where it has another or none, before the panel asks whether a file of that name is replaced.
class SavePanel final : public QFileDialog
{
    Q_OBJECT

public:
    /// \a type is the suffix, without its dot.
    SavePanel(QWidget *parent, QString type);

protected:
    void accept() override;

private:
    [[nodiscard]] bool namesFolder(const QString &text) const;

    QString m_type;
};

} // namespace vornic
