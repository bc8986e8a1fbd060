#include "core/ClientSession.h"

namespace tavren {

ClientSession::ClientSession(const QString& dataRoot, AutostartRegistrar* autostart,
                             Prompter& prompter, QObject* parent)
    : QObject(parent),
      dataRoot_(dataRoot),
      store_(),
      settings_(store_, dataRoot, autostart),
      files_(dataRoot),
      sounds_(settings_),
      server_(settings_, prompter) {}

}  // namespace tavren
