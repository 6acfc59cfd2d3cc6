#pragma once

#include "Examples/DiagnosticModel.h"
#include "Examples/ProductModel.h"
#include "Examples/StoreProfile.h"

/// The store's data and actions for the screens. Main thread only.
class StoreClient : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(ProductModel *products READ products CONSTANT FINAL)
    Q_PROPERTY(ProductModel *cart READ cart CONSTANT FINAL)
    Q_PROPERTY(DiagnosticModel *diagnostics READ diagnostics CONSTANT FINAL)
    Q_PROPERTY(Product product READ product NOTIFY productChanged FINAL)
    Q_PROPERTY(StoreProfile profile READ profile NOTIFY profileChanged FINAL)
    Q_PROPERTY(int cartCount READ cartCount NOTIFY cartChanged FINAL)
    Q_PROPERTY(QString cartTotal READ cartTotal NOTIFY cartChanged FINAL)
    Q_PROPERTY(bool signedIn READ isSignedIn NOTIFY profileChanged FINAL)
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged FINAL)
    Q_PROPERTY(QString signInError READ signInError NOTIFY signInErrorChanged FINAL)

public:
    explicit StoreClient(const QUrl &base, QObject *parent = nullptr);

    [[nodiscard]] ProductModel *products() { return &m_products; }
    [[nodiscard]] ProductModel *cart() { return &m_cart; }
    [[nodiscard]] DiagnosticModel *diagnostics() { return &m_diagnostics; }
    [[nodiscard]] Product product() const { return m_product; }
    [[nodiscard]] StoreProfile profile() const { return m_profile; }
    [[nodiscard]] int cartCount() const { return m_cartCount; }
    [[nodiscard]] QString cartTotal() const { return m_cartTotal; }
    [[nodiscard]] bool isSignedIn() const { return !m_profile.email.isEmpty(); }
    [[nodiscard]] bool isBusy() const { return m_pending > 0; }
    [[nodiscard]] QString signInError() const { return m_signInError; }

    /// Loads the products that contain @p query, or all. The server sends them only when they changed.
    Q_INVOKABLE void loadProducts(const QString &query = {});
    /// Makes a product the current one: shows the known data at once and loads the rest.
    Q_INVOKABLE void openProduct(const QString &id);
    Q_INVOKABLE void loadCart();
    Q_INVOKABLE void addToCart(const QString &id);
    Q_INVOKABLE void removeFromCart(const QString &id);
    Q_INVOKABLE void signIn(const QString &email, const QString &password);
    Q_INVOKABLE void signOut();

Q_SIGNALS:
    void productChanged();
    void profileChanged();
    void cartChanged();
    void busyChanged();
    void signInErrorChanged();
    /// Emitted to show a short message to the user.
    void noticed(const QString &text);

private:
    void call(const Quorvix::URLRequest &request, StoreApi::Done done);
    void loadProfile();
    void showCart(const StoreReply &reply);
    void setSignInError(const QString &error);

    StoreApi m_api;
    DiagnosticModel m_diagnostics;
    ProductModel m_products;
    ProductModel m_cart;
    Product m_product;
    StoreProfile m_profile;
    /// The catalogue's ETag by query.
    QHash<QString, QString> m_entityTags;
    QString m_shownQuery;
    QString m_cartTotal;
    QString m_signInError;
    int m_cartCount = 0;
    int m_pending = 0;
};
