#pragma once

#include "Annotations/EffectFilters.h"

#include <QImage>

/// Pictures to paint on, and effects computed the slow and certain way.
namespace TestPictures {

QImage noise(QSize size, unsigned seed);
QImage blackOrWhite(QSize size, unsigned seed);

/// The convolution with a Gaussian in double precision, edge pixels going on for ever.
QImage exactBlur(const QImage& image, double sigma);
/// Every pixel replaced by the rounded mean of its block.
QImage exactBlocks(const QImage& image, EffectFilters::Blocks blocks);

/// In levels of one colour channel; alpha is left out.
int largestDifference(const QImage& a, const QImage& b);
int largestDifference(const QImage& a, const QImage& b, const QRect& within);

} // namespace TestPictures
