#pragma once

#include "Quorvix/QXLogTreeDestination.h"
#include "Quorvix/QXPresentingModel.h"
#include "Quorvix/QXRequestSections.h"

#include "Text/QXTextDocument.h"

#include "Platform/Result.h"

#include <QtCore/QSet>
#include <QtQml/qqmlregistration.h>

#include <memory>

class QXLogTreeViewModel;

/// All that is known about one exchange, as the sections of the details screen, and what can be done with it.
/// Main thread only.
///
/// The trace is the one given, whatever the recorder makes of the exchange later. A large body is made
/// readable on another thread; its section has no document until then.
class QXRequestDetailsViewModel final : public QXPresentingModel
{
    Q_OBJECT
    Q_MOC_INCLUDE("Quorvix/QXLogTreeViewModel.h")
    QML_ELEMENT
    QML_UNCREATABLE("made by the request list")
    // What the screen presents, under the names of this model's fields.
    Q_PROPERTY(QVariant _shareItem READ shareItemValue WRITE setShareItemValue NOTIFY shareItemChanged)
    Q_PROPERTY(QString _alertTitle READ alertTitle NOTIFY _alertTitleChanged)
    Q_PROPERTY(QString _alertMessage READ alertMessageText NOTIFY alertMessageChanged)
    Q_PROPERTY(bool _showAlert READ showAlert WRITE setShowAlert NOTIFY showAlertChanged)
    Q_PROPERTY(QVariant _decodedPayload READ decodedPayloadValue WRITE setDecodedPayloadValue NOTIFY
                   decodedPayloadChanged)
    /// A QXLogTreeDestination while the tree is to be shown, else undefined; assigning undefined clears it.
    Q_PROPERTY(QVariant _logTreeDestination READ logTreeDestinationValue WRITE setLogTreeDestinationValue
                   NOTIFY _logTreeDestinationChanged)
    // Which groups are unfolded.
    Q_PROPERTY(bool _showRequestCookies READ showsRequestCookies NOTIFY groupsChanged)
    Q_PROPERTY(bool _showResponseCookies READ showsResponseCookies NOTIFY groupsChanged)
    Q_PROPERTY(bool _showResponseCache READ showsResponseCache NOTIFY groupsChanged)
    /// Whether responses to requests like this one are held. Stays off without a URL.
    Q_PROPERTY(bool breakpointEnabled READ breakpointEnabled WRITE setBreakpointEnabled NOTIFY
                   breakpointEnabledChanged)

public:
    enum Role { KindRole = Qt::UserRole, TitleRole, ValuesRole, ExpandedRole, DocumentRole };

    enum Kind { ValueSection, BreakpointSection, GroupSection, BodySection };
    Q_ENUM(Kind)

    using Group = QXRequestSection::Group;

    explicit QXRequestDetailsViewModel(const QXRequestTrace &request, QObject *parent = nullptr);
    ~QXRequestDetailsViewModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QXRequestTrace &request() const noexcept { return m_request; }
    [[nodiscard]] const QString &alertTitle() const noexcept { return m_alertTitle; }
    [[nodiscard]] const std::optional<QXLogTreeDestination> &logTreeDestination() const noexcept
    {
        return m_logTreeDestination;
    }
    [[nodiscard]] bool shows(Group group) const { return m_unfolded.contains(group); }
    [[nodiscard]] bool breakpointEnabled() const;
    void setBreakpointEnabled(bool enabled);

    /// Unfolds the group of a section, or folds it; passes over a section that is none.
    Q_INVOKABLE void toggleGroup(int row);
    /// What shows a value that no single text item could lay out in time, a child of the model; null for
    /// others.
    Q_INVOKABLE QXTextDocument *documentForValue(const QString &text);
    /// Places a value on the clipboard and says so in the alert.
    Q_INVOKABLE void copyValue(const QString &text);
    /// Whether decodeValue() would find something. Takes time that grows with the text.
    Q_INVOKABLE bool canDecodeValue(const QString &text) const;
    Q_INVOKABLE void decodeValue(const QString &text);
    /// The body of a section as it is shown; empty while it has no document.
    [[nodiscard]] Q_INVOKABLE QString bodyText(int row) const;
    /// Whether decodeValue() would find something in that text. Known before it is asked for when the body is
    /// a large one that has been shown for a while.
    [[nodiscard]] Q_INVOKABLE bool canDecodeBody(int row) const;
    /// Publishes the body of a section as the tree to be shown; nothing while it has no document.
    Q_INVOKABLE void openLogTree(int row);
    /// The tree of the destination that is published, to be owned by QML; null without one.
    Q_INVOKABLE QXLogTreeViewModel *makeLogTree() const;

    Q_INVOKABLE void shareCurl();
    Q_INVOKABLE void shareHarFile();
    Q_INVOKABLE void shareMockServerFile();
    Q_INVOKABLE void shareSwiftModel();
    Q_INVOKABLE void shareRawDetails();

Q_SIGNALS:
    void _alertTitleChanged();
    void _logTreeDestinationChanged();
    void groupsChanged();
    void breakpointEnabledChanged();

private:
    [[nodiscard]] bool showsRequestCookies() const { return shows(Group::RequestCookies); }
    [[nodiscard]] bool showsResponseCookies() const { return shows(Group::ResponseCookies); }
    [[nodiscard]] bool showsResponseCache() const { return shows(Group::ResponseCache); }
    [[nodiscard]] QVariant logTreeDestinationValue() const;
    void setLogTreeDestinationValue(const QVariant &value);

    /// What shows the body of a section: a child of the model, or null.
    [[nodiscard]] QXTextDocument *document(int row) const;
    void makeReadable(std::size_t row);
    void setBody(std::size_t row, const std::optional<QString> &text);
    void lookForEncoded(std::size_t row);
    /// Does @p work on another thread, and then @p finish with what came of it here, unless the model has
    /// gone.
    template<typename Work, typename Finish>
    void inBackground(Work work, Finish finish);
    template<typename Artefact>
    void share(const Quorvix::Result<Artefact> &artefact);
    void alert(const QString &title, const QString &message);

    const QXRequestTrace m_request;
    std::vector<QXRequestSection> m_sections;
    /// For each section: what shows its body, a child of the model, or null.
    std::vector<QXTextDocument *> m_documents;
    /// For each section: whether its body can be decoded, once that is known.
    std::vector<std::optional<bool>> m_decodable;
    QSet<Group> m_unfolded;
    QString m_alertTitle;
    std::optional<QXLogTreeDestination> m_logTreeDestination;
    /// Lives as long as the model, for those on other threads who work for it.
    std::shared_ptr<const bool> m_alive = std::make_shared<const bool>(true);
};
