#pragma once

class QBoxLayout;
class QHBoxLayout;

/// The columns of a row: the sizes that keep every text in them whole. All sizes are in pixels and
/// include the row's margins.
class Columns
{
public:
    /// @param row the horizontal layout of a widget, which must outlive this object
    explicit Columns(QBoxLayout& row);

    /// @p width, or the least width in which no text is cut that cannot wrap.
    int enoughWidth(int width) const;
    /// The width that the row itself asks for.
    int preferredWidth() const;
    /// The height below which texts are cut if the row is @p width wide.
    int leastHeight(int width) const;

    /// Corrects the places that the row gave its columns. Below the preferred width it takes from
    /// each column the same, also from one that has nothing to give while another one has.
    void layOut() const;

private:
    void measure(QHBoxLayout& measured) const;

    QBoxLayout& m_row;
};
