#pragma once

#include "Tests/NetworkStage.h"

/// The plays of the comparison, as rows of a table with the columns "play", "manager" and "transport".
namespace NetworkPlays {

/// What kind of manager a play needs: one without a class of its own; or one of a class of the host's, which
/// is captured by its base class, by a wrapper, or by a line in its createRequest().
enum class Manager { Itself, Subclass, Wrapped, OneLine };

void row(const QByteArray &name, const NetworkStage::Play &play, Manager manager = Manager::Itself);
void secureRow(const QByteArray &name, const NetworkStage::Play &play);

/// A body whose parts arrive one after the other; lines end within them.
inline const QByteArrayList parts{"first line\r\nsecond", " half\nthird line\n", "the rest"};

/// An answer whose head and parts go out one by one.
ScriptedServer::Answer inParts(const QByteArray &head, const QByteArrayList &body, bool closes = false);
ScriptedServer::Answer inPartsWithLength(const QByteArray &status, const QByteArrayList &body);
/// Lets the server send the next part of the first reply, unless that has finished.
void goOn(NetworkStage &stage, QNetworkReply *reply);
/// Makes the host wait for each part.
void goOnAtEachPart(NetworkStage &stage);

// Plays of one exchange that nothing disturbs.
void addAnswers();
void addRequests();
void addReaders();
// Plays in which the host or the way to the server does more.
void addInterventions();
void addRedirects();
void addCredentials();
void addCertificates();
void addCaches();
void addFailures();
void addLives();
void addFlows();

} // namespace NetworkPlays
