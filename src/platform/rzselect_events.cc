// Copyright 2026 The Veltmark authors.

#include "platform/rzselect_events.h"

#include <algorithm>

#include "core/error.h"

namespace rz {

void EventHandlerList::Add(RZselectEvents* handler) {
  if (handler == nullptr) throw Error::ObjectNotSet("event handler");
  handlers_.push_back(handler);
}

void EventHandlerList::Remove(RZselectEvents* handler) {
  handlers_.erase(std::remove(handlers_.begin(), handlers_.end(), handler),
                  handlers_.end());
}

void EventHandlerList::RaiseOpenDataSource(bool& cancel) const {
  for (RZselectEvents* handler : handlers_) handler->OpenDataSource(cancel);
}

void EventHandlerList::RaiseWriteDataSource(bool& cancel) const {
  for (RZselectEvents* handler : handlers_) handler->WriteDataSource(cancel);
}

void EventHandlerList::RaiseCloseDataSource(bool& cancel) const {
  for (RZselectEvents* handler : handlers_) handler->CloseDataSource(cancel);
}

}  // namespace rz
