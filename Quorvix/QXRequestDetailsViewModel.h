#pragma once

#include "Quorvix/QXBodyConversions.h"
#include "Quorvix/QXLogTreeDestination.h"
#include "Quorvix/QXPresentingModel.h"
#include "Quorvix/QXRequestSections.h"

#include "Text/QXTextDocument.h"

#include "Platform/NSNotificationCenter.h"
#include "Platform/Result.h"

#include <QtCore/QSet>
#include <QtQml/qqmlregistration.h>

#include <functional>

class QXLogTreeViewModel;

/// All information about one exchange, as the sections of the details screen, with the actions of that
/// screen. Main thread only.
///
/// The model keeps the trace that it was made with; later changes in the recorder do not affect it. But it
/// asks the source of a running exchange for what has arrived, and changes to the trace with the first
/// answer. A large body is converted to text on another thread; its section has no document until then.
class QXRequestDetailsViewModel final : public QXPresentingModel
{
    Q_OBJECT
    Q_MOC_INCLUDE("Quorvix/QXLogTreeViewModel.h")
    QML_ELEMENT
    QML_UNCREATABLE("made by the request list")
    // The inherited properties under the names that belong to this model.
    Q_PROPERTY(QVariant _shareItem READ shareItemValue WRITE setShareItemValue NOTIFY shareItemChanged)
    Q_PROPERTY(QString _alertTitle READ alertTitle NOTIFY _alertTitleChanged)
    Q_PROPERTY(QString _alertMessage READ alertMessageText NOTIFY alertMessageChanged)
    Q_PROPERTY(bool _showAlert READ showAlert WRITE setShowAlert NOTIFY showAlertChanged)
    Q_PROPERTY(QVariant _decodedPayload READ decodedPayloadValue WRITE setDecodedPayloadValue NOTIFY
                   decodedPayloadChanged)
    /// The QXLogTreeDestination of the tree that is shown, or undefined; assigning undefined clears it.
    Q_PROPERTY(QVariant _logTreeDestination READ logTreeDestinationValue WRITE setLogTreeDestinationValue
                   NOTIFY _logTreeDestinationChanged)
    // The groups that are expanded.
    Q_PROPERTY(bool _showRequestCookies READ showsRequestCookies NOTIFY groupsChanged)
    Q_PROPERTY(bool _showResponseCookies READ showsResponseCookies NOTIFY groupsChanged)
    Q_PROPERTY(bool _showResponseCache READ showsResponseCache NOTIFY groupsChanged)
    /// Whether a breakpoint rule matches this request. Always false without a URL.
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
    [[nodiscard]] bool shows(Group group) const { return m_expandedGroups.contains(group); }
    [[nodiscard]] bool breakpointEnabled() const;
    void setBreakpointEnabled(bool enabled);

    /// Expands or collapses the group of a section. Does nothing if the section is not a group.
    Q_INVOKABLE void toggleGroup(int row);
    /// Makes a document for a value that is too long for a single text item. The model owns it. Null for
    /// shorter values.
    Q_INVOKABLE QXTextDocument *documentForValue(const QString &text);
    /// Copies a value to the clipboard and shows the alert that says so.
    Q_INVOKABLE void copyValue(const QString &text);
    /// Whether decodeValue() finds something to decode in @p text. Linear in its length.
    Q_INVOKABLE bool canDecodeValue(const QString &text) const;
    Q_INVOKABLE void decodeValue(const QString &text);
    /// The body of a section as shown; empty if the section has no document yet.
    [[nodiscard]] Q_INVOKABLE QString bodyText(int row) const;
    /// Copies the body of a section to the clipboard, like copyValue(). Does nothing if it has no document.
    Q_INVOKABLE void copyBody(int row);
    /// Whether decodeBody() finds something to decode. For a large body, another thread finds this out;
    /// before that, this is false, and decodableChanged() is emitted when it changes.
    [[nodiscard]] Q_INVOKABLE bool canDecodeBody(int row) const;
    /// Decodes the body of a section, like decodeValue().
    Q_INVOKABLE void decodeBody(int row);
    /// Sets the log tree destination to the body of a section. Does nothing if the section has no document.
    Q_INVOKABLE void openLogTree(int row);
    /// Makes the tree for the log tree destination. The screen that shows it becomes its owner. Null if there
    /// is no destination.
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
    /// Emitted when canDecodeBody() changes for a row.
    void decodableChanged();

private:
    [[nodiscard]] bool showsRequestCookies() const { return shows(Group::RequestCookies); }
    [[nodiscard]] bool showsResponseCookies() const { return shows(Group::ResponseCookies); }
    [[nodiscard]] bool showsResponseCache() const { return shows(Group::ResponseCache); }
    [[nodiscard]] QVariant logTreeDestinationValue() const;
    void setLogTreeDestinationValue(const QVariant &value);

    struct Row
    {
        QXRequestSection section;
        /// The document of the body, owned by the model, or null.
        QXTextDocument *document = nullptr;
        /// Whether the body can be decoded; absent while this is not known.
        std::optional<bool> decodable;
    };

    [[nodiscard]] QXTextDocument *document(int row) const;
    /// The row if its body is still this one, or null.
    [[nodiscard]] Row *rowWithBody(std::size_t row, const QByteArray &body);
    void refresh();
    void show(const QXRequestTrace &trace);
    void addRows(std::vector<QXRequestSection> sections);
    void removeRowsFrom(std::size_t first);
    void loadBody(std::size_t row);
    void setBody(std::size_t row, const QXTextContent &content);
    void checkDecodable(std::size_t row);
    /// Makes a whole text. Any thread.
    template<typename Text>
    using Source = std::function<Text(QXTaskProgress *)>;
    /// For a row with a document.
    [[nodiscard]] Source<QString> bodySource(int row) const;
    [[nodiscard]] Source<QByteArray> utf8Source(int row) const;
    [[nodiscard]] qsizetype bodySize(int row) const;
    void decode(qsizetype size, Source<QByteArray> utf8);
    [[nodiscard]] qsizetype sizeOfBodies() const;
    template<typename Export>
    void share(const QString &title, const QString &progressTitle, Export make,
               QString (*describe)(const Quorvix::NSError &) = &QXRequestDetailsViewModel::messageOf);
    [[nodiscard]] static QString messageOf(const Quorvix::NSError &error);
    void alert(const QString &title, const QString &message);

    QXRequestTrace m_request;
    std::vector<Row> m_rows;
    QSet<Group> m_expandedGroups;
    QString m_alertTitle;
    std::optional<QXLogTreeDestination> m_logTreeDestination;
    /// Exists only until the source of a running exchange has answered.
    Quorvix::NSNotificationObserver m_observer;
    QXBodyConversions m_conversions;
};
