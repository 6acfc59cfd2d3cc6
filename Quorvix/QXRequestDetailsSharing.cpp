// The share actions of the details screen.

#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXSwiftModelExport.h"
#include "Quorvix/QXTemporaryFile.h"

#include "Platform/FreedMemory.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Quorvix;

qsizetype QXRequestDetailsViewModel::sizeOfBodies() const
{
    qsizetype size = 0;
    for (const Row &row : m_rows)
        size += row.section.body.size();
    return size;
}

/// Makes an artefact from the trace and presents it under its title, or says why there is none.
template<typename Export>
void QXRequestDetailsViewModel::share(const QString &title, const QString &progressTitle, Export make,
                                      QString (*describe)(const NSError &))
{
    task()->perform(
        sizeOfBodies(), progressTitle,
        [trace = m_request, make = std::move(make)](QXTaskProgress *progress) {
            return make(trace, progress);
        },
        [this, title, describe](const auto &artefact) {
            // An export needs several times the size of the bodies, until it is done.
            FreedMemory::note(sizeOfBodies());
            if (artefact)
                presentShareItem(QXShareItem(artefact.value(), title));
            else
                alert(QCoreApplication::translate("Quorvix", "Export Failed"), describe(artefact.error()));
        },
        [](const auto &artefact) {
            if constexpr (std::is_same_v<decltype(artefact), const Result<QUrl> &>) {
                if (artefact)
                    QXTemporaryFile::remove(artefact.value());
            }
        });
}

QString QXRequestDetailsViewModel::messageOf(const NSError &error)
{
    return error.localizedDescription;
}

void QXRequestDetailsViewModel::shareCurl()
{
    share(QCoreApplication::translate("Quorvix", "cURL command"),
          QCoreApplication::translate("Quorvix", "Preparing cURL Command…"),
          [](const QXRequestTrace &trace, QXTaskProgress *progress) {
              return QXCurlCommandBuilder::build(trace, progress);
          });
}

void QXRequestDetailsViewModel::shareHarFile()
{
    const auto make = [](const QXRequestTrace &trace, QXTaskProgress *progress) {
        return QXArchiveWriter::exportTrace(trace, std::chrono::system_clock::now(), progress);
    };
    share(QCoreApplication::translate("Quorvix", "HAR archive"),
          QCoreApplication::translate("Quorvix", "Preparing HAR File…"), make,
          &QXArchiveWriter::failureMessage);
}

void QXRequestDetailsViewModel::shareMockServerFile()
{
    share(QCoreApplication::translate("Quorvix", "Mock server file"),
          QCoreApplication::translate("Quorvix", "Preparing Mock Server File…"),
          [](const QXRequestTrace &trace, QXTaskProgress *progress) {
              return QXApiMockGenerator::exportMock(trace, progress);
          });
}

void QXRequestDetailsViewModel::shareSwiftModel()
{
    share(QCoreApplication::translate("Quorvix", "Swift model"),
          QCoreApplication::translate("Quorvix", "Preparing Swift Model…"),
          [](const QXRequestTrace &trace, QXTaskProgress *progress) {
              return QXSwiftModelExport::exportTrace(trace, progress);
          });
}

void QXRequestDetailsViewModel::shareRawDetails()
{
    using Text = std::pair<QByteArray, Source<QString>>;
    std::vector<Text> texts;
    for (int row = 0; row < rowCount(); ++row) {
        if (document(row))
            texts.emplace_back(m_rows[std::size_t(row)].section.body, bodySource(row));
    }
    share(QCoreApplication::translate("Quorvix", "Raw details"),
          QCoreApplication::translate("Quorvix", "Preparing Raw Details…"),
          [texts](const QXRequestTrace &trace, QXTaskProgress *progress) -> Result<QString> {
              const auto textOf = [&](const QByteArray &body) {
                  const auto known = std::find_if(texts.cbegin(), texts.cend(), [&](const Text &text) {
                      return text.first.isSharedWith(body);
                  });
                  return known == texts.cend() ? QXBodyText::text(body, progress) : known->second(progress);
              };
              return rawDetails(trace, textOf, progress);
          });
}
