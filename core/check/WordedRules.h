#pragma once

#include "core/check/CheckRules.h"

namespace kadrona::core {

// What the table of rules needs for those that are not a figure between two limits: whether a
// document's row says anything of them (`published`), and what is found (`finish`).

/// Whether the row is of a document: each wants a face in its picture, also those that publish no
/// figures of it. Of a template of the user's own nothing is known, and nobody publishes anything
/// of what is no document.
bool WantsAFace(const TemplateRow& row);

PublishedBand FaceOfHead(const TemplateRow& row);
void FinishFace(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row);

void FinishWhiteCorners(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row);

/// The authority forbids white in words; to the eye that is nearly the lightest, without a hue.
PublishedBand NotWhite(const TemplateRow& row);
void FinishNotWhite(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row);

PublishedBand EditingOf(const TemplateRow& row);
void FinishEditing(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row);

/// What whoever chooses a template of the folder has to know of paper, a German sentence; empty
/// where pictures on paper are taken. So it is of a table that cannot be read, which is told of
/// where its figures are needed.
QString PaperNotice(const QString& templateFolder, const QString& templateFile);

/// Published, yet never missed: the rule is about what is handed in, and the same cut may go to the
/// authority as a file. A question before every cut for the commonest document would be answered
/// unread, and each strict check of a good picture would fail.
PublishedBand PaperOf(const TemplateRow& row);
void FinishPaper(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row);

}  // namespace kadrona::core
