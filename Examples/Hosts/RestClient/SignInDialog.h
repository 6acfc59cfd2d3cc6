#pragma once

#include <QtWidgets/QDialog>

class QLineEdit;

/// Asks for the name and password of a user.
class SignInDialog final : public QDialog
{
    Q_OBJECT

public:
    SignInDialog(const QString &host, const QString &realm, QWidget *parent);

    [[nodiscard]] QString user() const;
    [[nodiscard]] QString password() const;

private:
    QLineEdit *m_user;
    QLineEdit *m_password;
};
