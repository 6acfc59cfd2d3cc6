#include "SignInDialog.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

SignInDialog::SignInDialog(const QString &host, const QString &realm, QWidget *parent)
    : QDialog(parent), m_user(new QLineEdit), m_password(new QLineEdit)
{
    setWindowTitle(tr("Sign in"));
    m_user->setObjectName(QStringLiteral("user"));
    m_password->setObjectName(QStringLiteral("password"));
    m_password->setEchoMode(QLineEdit::Password);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const form = new QFormLayout(this);
    form->addRow(new QLabel(tr("%1 asks for your name: %2").arg(host, realm)));
    form->addRow(tr("Name"), m_user);
    form->addRow(tr("Password"), m_password);
    form->addRow(buttons);
}

QString SignInDialog::user() const
{
    return m_user->text();
}

QString SignInDialog::password() const
{
    return m_password->text();
}
