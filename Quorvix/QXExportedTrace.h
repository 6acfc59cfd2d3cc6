#pragma once

#include "Quorvix/QXHeaderCookies.h"
#include "Quorvix/QXRequestTrace.h"

#include <QtNetwork/QNetworkCookie>

/// A trace as an export may show it: with a marker in place of the values that QXRedaction keeps secret.
///
/// Every exporter takes this type instead of a QXRequestTrace, which converts to it at the call. So an
/// exporter cannot forget the redaction. It refers to the trace, which must outlive it. Any thread.
class QUORVIX_INTERNAL_EXPORT QXExportedTrace final
{
public:
    QXExportedTrace(const QXRequestTrace &trace);
    Q_DISABLE_COPY_MOVE(QXExportedTrace)

    [[nodiscard]] const QXRequestTrace &operator*() const { return m_redacted ? *m_redacted : m_original; }
    [[nodiscard]] const QXRequestTrace *operator->() const { return &**this; }

    /// The cookies that the request has sent and that the response has set, with markers as values if their
    /// header is redacted.
    [[nodiscard]] QList<QXHeaderCookie> requestCookies() const;
    [[nodiscard]] QList<QXHeaderCookie> responseCookies() const;
    /// The cookies that the shared storage has for the URL now, with markers as values if a header of cookies
    /// is redacted.
    [[nodiscard]] QList<QNetworkCookie> storedCookies() const;

private:
    const QXRequestTrace &m_original;
    /// Absent if nothing is redacted.
    std::optional<QXRequestTrace> m_redacted;
};
