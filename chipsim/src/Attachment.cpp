#include "Attachment.h"

#include "SegmentLayout.h"

namespace chipsim {

Attachment& Attachment::instance() {
  static Attachment attachment;
  return attachment;
}

std::string& Attachment::lastFault() {
  thread_local std::string fault;
  return fault;
}

int Attachment::damaged(const std::string& fault) {
  lastFault() = fault;
  return EUCLEAN;
}

Attachment::Attachment() {
  chipsim_config_default(&config_);
}

int Attachment::configure(const chipsim_config& config) {
  if (!SegmentLayout::of(config)) {
    return EINVAL;
  }
  std::unique_lock<std::shared_mutex> guard(mutex_);
  config_ = config;
  return 0;
}

void Attachment::adopt(std::unique_ptr<Segment> segment) {
  chip_.reset();
  segment_ = std::move(segment);
  chip_ = std::make_unique<Chip>(segment_->base());
}

int Attachment::ensureChip() {
  {
    std::shared_lock<std::shared_mutex> guard(mutex_);
    if (chip_) {
      return 0;
    }
  }
  std::unique_lock<std::shared_mutex> guard(mutex_);
  if (chip_) {
    return 0;
  }
  std::unique_ptr<Segment> segment;
  if (int error = Segment::makePrivate(config_, segment)) {
    return error;
  }
  adopt(std::move(segment));
  return 0;
}

int Attachment::checkSegment() {
  if (int error = ensureChip()) {
    return error;
  }
  std::shared_lock<std::shared_mutex> guard(mutex_);
  if (segment_) {
    if (std::optional<std::string> cut = segment_->cutShort()) {
      return damaged(*cut);
    }
  }
  return 0;
}

int Attachment::attach(const char* name, bool create) {
  std::unique_lock<std::shared_mutex> guard(mutex_);
  std::unique_ptr<Segment> segment;
  std::string fault;
  int error = name == nullptr ? Segment::makePrivate(config_, segment)
                              : Segment::open(name, create, config_, segment, fault);
  if (error == EUCLEAN || error == ETIMEDOUT || error == EPERM) {
    lastFault() = fault;
  }
  if (error == 0) {
    adopt(std::move(segment));
  }
  return error;
}

int Attachment::reset() {
  std::unique_lock<std::shared_mutex> guard(mutex_);
  if (!segment_ || segment_->isPrivate()) {
    std::unique_ptr<Segment> segment;
    if (int error = Segment::makePrivate(config_, segment)) {
      return error;
    }
    adopt(std::move(segment));
    return 0;
  }
  ChipLock lock(*chip_);
  if (lock.error() == 0) {
    chip_->clear();
  }
  return lock.error();
}

std::string Attachment::name() {
  if (ensureChip() != 0) {
    return "(none)";
  }
  std::shared_lock<std::shared_mutex> guard(mutex_);
  return segment_->name();
}

}  // namespace chipsim
