#include "editor/window/render_dialog.h"

#include <QtWidgets>
#include <algorithm>
#include <cmath>

#include "editor/document/show_changes.h"
#include "editor/window/file_dialogs.h"
#include "editor/window/render_queue.h"
#include "host/base/error.h"
#include "host/film/codecs.h"
#include "host/film/depth.h"
#include "host/film/formats.h"
#include "host/options/choices.h"

namespace kelto::editor {
namespace {

/// Names of kinds and what they are written as.
struct Kind {
  const char* name;
  const char* ending;
};
constexpr Kind kKinds[] = {{"MP4", ".mp4"},      {"Matroska", ".mkv"}, {"MOV", ".mov"},
                           {"WebM", ".webm"},    {"PNG", "-%04d.png"}, {"TIFF", "-%04d.tiff"},
                           {"JPEG", "-%04d.jpg"}};

QString KindOf(const QString& ending) { return ending.section('.', -1); }

/// A name without the ending of any kind.
QString Stem(QString name) {
  for (const Kind& kind : kKinds) {
    if (name.endsWith(kind.ending)) {
      name.chop(static_cast<int>(qstrlen(kind.ending)));
      return name;
    }
  }
  return name;
}

/// Frames of the whole film; of a show, before fades.
int32_t FramesOf(const Document& document, const host::RenderPlan& plan) {
  if (!IsShow(document)) return plan.frames;
  double seconds = 0.0;
  for (const PictureEntry& picture : PicturesOf(document)) seconds += picture.seconds;
  return static_cast<int32_t>(std::lround(seconds * plan.format.rate.PerSecond()));
}

}  // namespace

RenderDialog::RenderDialog(QString command, const Document& document, QWidget* parent)
    : QDialog(parent), command_(std::move(command)), document_(document) {
  setWindowTitle(tr("Make a Film"));
  const host::RenderPlan plan = PlanOf(document);
  frames_ = FramesOf(document, plan);

  name_ = new QLineEdit(Stem(QString::fromStdString(document.path).chopped(5)) + ".mp4");
  name_->setAccessibleName(tr("Name"));
  name_->setMinimumWidth(360);
  auto* browse = new QPushButton(tr("Browse…"));
  browse->setAutoDefault(false);  // Return makes the film
  auto* nameRow = new QHBoxLayout;
  nameRow->addWidget(name_, 1);
  nameRow->addWidget(browse);
  kind_ = new QComboBox;
  for (const Kind& kind : kKinds) kind_->addItem(kind.name, QString(kind.ending));
  codec_ = new QComboBox;
  size_ = new QComboBox;
  const int width = plan.format.size.width, height = plan.format.size.height;
  for (const auto& [text, share] : {std::pair{tr("As in the project, %1 × %2"), 1},
                                    {tr("Half, %1 × %2"), 2},
                                    {tr("A quarter, %1 × %2"), 4}}) {
    const int w = width / share / 2 * 2, h = height / share / 2 * 2;
    if (w >= 2 && h >= 2) size_->addItem(text.arg(w).arg(h), share == 1 ? QSize() : QSize(w, h));
  }
  depth_ = new QComboBox;
  depth_->setAccessibleName(tr("Colour depth"));
  depth_->setToolTip(tr("How many bits a channel the film has"));
  // In one row: on small screens there is no room for another.
  auto* codecRow = new QHBoxLayout;
  codecRow->addWidget(codec_, 1);
  codecRow->addWidget(depth_, 1);
  quality_ = new QComboBox;
  for (const auto& [text, word] : {std::pair{tr("High"), "high"},
                                   {tr("Best"), "best"},
                                   {tr("Medium"), "medium"},
                                   {tr("Low"), "low"}}) {
    quality_->addItem(text, QString(word));
  }
  filter_ = new QComboBox;
  filter_->addItem(tr("As in the project"), QString());
  filter_->addItem(tr("Best (Ultra Qual)"), QString("ultra"));
  filter_->addItem(tr("Good (Hi Qual)"), QString("hiqual"));
  filter_->addItem(tr("Draft (Triangle)"), QString("triangle"));
  estimate_ = new QLabel;
  estimate_->setWordWrap(true);
  estimate_->setTextFormat(Qt::PlainText);

  auto* form = new QFormLayout;
  form->addRow(tr("Name"), nameRow);
  form->addRow(tr("Format"), kind_);
  form->addRow(tr("Codec"), codecRow);
  form->addRow(tr("Size"), size_);
  form->addRow(tr("Quality"), quality_);
  form->addRow(tr("Filter"), filter_);
  form->addRow(tr("Estimate"), estimate_);
  buttons_ = new QDialogButtonBox(QDialogButtonBox::Cancel);
  auto* make = buttons_->addButton(tr("Make Film"), QDialogButtonBox::AcceptRole);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(20, 20, 20, 16);
  column->setSpacing(16);
  column->addLayout(form);
  column->addWidget(buttons_);
  make->setDefault(true);  // of this dialog, which it is in by now

  connect(browse, &QPushButton::clicked, this, &RenderDialog::AskName);
  connect(kind_, &QComboBox::activated, this, [this] {
    name_->setText(Stem(name_->text()) + kind_->currentData().toString());
    ShowCodecs();
    Estimate();
  });
  connect(codec_, &QComboBox::activated, this, &RenderDialog::ShowDepths);
  for (QComboBox* box : {codec_, depth_, size_, quality_, filter_}) {
    connect(box, &QComboBox::activated, this, &RenderDialog::Estimate);
  }
  connect(name_, &QLineEdit::textEdited, this, &RenderDialog::ShowKind);
  connect(buttons_, &QDialogButtonBox::accepted, this, [this] {
    if (QFileInfo::exists(Film()) &&
        QMessageBox::question(
            this, windowTitle(),
            Qt::convertFromPlainText(tr("%1 already exists. Replace it?").arg(Film()))) !=
            QMessageBox::Yes) {
      return;
    }
    accept();
  });
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  ShowCodecs();
  Estimate();
}

QString RenderDialog::Film() const {
  return QDir(QFileInfo(QString::fromStdString(document_.path)).absolutePath())
      .absoluteFilePath(name_->text());
}

QStringList RenderDialog::Options() const {
  QStringList options;
  const QString codec = codec_->currentData().toString();
  if (!codec.isEmpty()) options << "--codec" << codec;
  const int depth = depth_->currentData().toInt();
  if (depth_->isEnabled() && depth > 0) options << "--depth" << QString::number(depth);
  const QString quality = quality_->currentData().toString();
  if (quality_->isEnabled() && quality != "high") options << "--quality" << quality;
  const QSize size = size_->currentData().toSize();
  if (size.isValid()) {
    options << "--size" << QString("%1x%2").arg(size.width()).arg(size.height());
  }
  const QString filter = filter_->currentData().toString();
  if (!filter.isEmpty()) options << "--filter" << filter;
  return options;
}

void RenderDialog::ShowCodecs() {
  codec_->clear();
  const std::string kind = KindOf(kind_->currentData().toString()).toStdString();
  for (const host::FilmCodec& codec : host::FilmCodecs()) {
    const bool fits = std::any_of(codec.kinds.begin(), codec.kinds.end(),
                                  [&](const char* name) { return kind == name; });
    if (fits) codec_->addItem(codec.title, QString(codec.name));
  }
  codec_->setEnabled(codec_->count() > 0);
  quality_->setEnabled(codec_->count() >
                       0);  // stills are coded without loss, or as the kind has it
  ShowDepths();
}

void RenderDialog::ShowDepths() {
  const int before = depth_->isEnabled() ? depth_->currentData().toInt() : 0;
  depth_->clear();
  depth_->addItem(tr("Depth of the photo"), 0);
  const host::FilmKind& kind =
      host::KindFor("", KindOf(kind_->currentData().toString()).toStdString());
  const std::string codec = codec_->currentData().toString().toStdString();
  for (const int32_t depth : host::DepthsOf(kind, codec, false)) {
    depth_->addItem(tr("%1 bits a channel").arg(depth), depth);
  }
  depth_->setEnabled(depth_->count() > 2);  // more than one
  // The one that there is, rather than a photo's that the codec cannot have.
  const int usual = depth_->count() == 2 ? 1 : 0;
  depth_->setCurrentIndex(depth_->isEnabled() ? std::max(0, depth_->findData(before)) : usual);
}

void RenderDialog::ShowKind() {
  for (int i = 0; i < kind_->count(); ++i) {
    const QString ending = "." + KindOf(kind_->itemData(i).toString());
    if (!name_->text().endsWith(ending) || i == kind_->currentIndex()) continue;
    kind_->setCurrentIndex(i);
    ShowCodecs();
    Estimate();
  }
}

void RenderDialog::AskName() {
  const QString name = AskFileToSave(this, {tr("Name of the film"), Film(), {}}, false);
  if (name.isEmpty()) return;
  name_->setText(name);
  ShowKind();
}

void RenderDialog::Estimate() {
  estimate_->setText(tr("Making a sample…"));
  try {
    // Of a show, the picture being edited stands for all.
    const Document sampled = PictureAlone(document_);
    const QString project = SnapshotOf(sampled, folder_.path(), 0);
    // From the middle, where films move.
    const int whole = PlanOf(sampled).frames;
    sampleFrames_ = std::min(whole, 25);
    const int first = (whole - sampleFrames_) / 2;
    const QString film = folder_.path() + "/sample" + kind_->currentData().toString();
    for (const QFileInfo& old : QDir(folder_.path()).entryInfoList({"sample*"})) {
      QFile::remove(old.filePath());
    }
    QStringList options = Options();
    if (sampleFrames_ < whole) {
      options << "--frames" << QString("%1..%2").arg(first).arg(first + sampleFrames_);
    }
    sample_ = std::make_unique<RenderJob>(command_, "render", project, film, options);
    connect(sample_.get(), &RenderJob::Ended, this, &RenderDialog::ShowEstimate);
    sample_->Start();
  } catch (const host::Error& error) {
    estimate_->setText(QString::fromStdString(error.what()));
  }
}

void RenderDialog::ShowEstimate() {
  if (sample_->TheState() == RenderJob::State::kFailed) {
    estimate_->setText(sample_->Reason());
    return;
  }
  qint64 bytes = 0;
  for (const QFileInfo& made : QDir(folder_.path()).entryInfoList({"sample*"})) {
    bytes += made.size();
  }
  const double times = static_cast<double>(frames_) / sampleFrames_;
  const int seconds = static_cast<int>(sample_->Elapsed() * times + 0.5);
  estimate_->setText(
      tr("About %1, made in about %2 s")
          .arg(locale().formattedDataSize(static_cast<qint64>(static_cast<double>(bytes) * times)))
          .arg(std::max(1, seconds)));
}

}  // namespace kelto::editor
