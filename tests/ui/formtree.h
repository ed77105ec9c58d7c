#pragma once

#include <QStringList>

// The whole form, one line for each widget, layout and spacer, in the order of the layouts. Each
// name is followed by the properties that differ from those of a new object of its class. Margins
// are left, top, right, bottom, "-" being the style's own; grid cells are row,column and the rows x
// columns that they span.
inline QStringList expectedTree()
{
    const QString tree = R"(
centralWidget QWidget
  horizontalLayout QHBoxLayout spacing=20 margins=11,11,11,11
    verticalLayout QVBoxLayout spacing=10 margins=-,-,-,-
      label_224 QLabel autoFillBackground=true wordWrap=true indent=10
      label_213 QLabel minimumSize=480x0 autoFillBackground=true wordWrap=true indent=10
      spacer 20x10 Minimum/Fixed
      label_12 QLabel autoFillBackground=true margin=5
      verticalLayout_2 QVBoxLayout spacing=0 margins=-,-,-,5
        label_16 QLabel
        textInfo QPlainTextEdit sizePolicy=Expanding/Fixed maximumSize=any x60 verticalScrollBarPolicy=ScrollBarAlwaysOn lineWrapMode=NoWrap
      tableWidget QTableWidget editTriggers=NoEditTriggers showDropIndicator=false alternatingRowColors=true selectionMode=SingleSelection selectionBehavior=SelectRows columnCount=11
      groupBox_2 QGroupBox
        horizontalLayout_2 QHBoxLayout spacing=6 margins=11,11,11,11
          buttonMoveUp QPushButton
          buttonDelete QPushButton
          spacer 10x20 Fixed/Minimum
          buttonSave QPushButton shortcut=Ctrl+S
          spacer 40x20 Expanding/Minimum
          buttonLoad QPushButton shortcut=Ctrl+O
    verticalLayout_5 QVBoxLayout spacing=2 margins=-,-,-,-
      label_13 QLabel autoFillBackground=true margin=5
      label_14 QLabel
      radioNextConfig QRadioButton sizePolicy=Fixed/Fixed
      radioNewTest QRadioButton sizePolicy=Fixed/Fixed checked=true
      groupBox QGroupBox minimumSize=500x0
        formLayout_3 QFormLayout growth=AllNonFixedFieldsGrow spacing=6/2 margins=15,0,5,-
          row 0 label: label_2 QLabel
          row 0 field: verticalLayout_4 QVBoxLayout spacing=0 margins=-,-,-,4
            comboMethod QComboBox currentIndex=0
            label_218 QLabel autoFillBackground=true wordWrap=true indent=10
          row 1 label: label QLabel
          row 1 field: verticalLayout_3 QVBoxLayout spacing=0 margins=-,-,-,-
            comboTestType QComboBox currentIndex=0
          row 2 label: label_8 QLabel
          row 2 field: gridLayout_4 QGridLayout spacing=6/0 margins=-,-,-,6
            cell 0,0 1x1: editSource QLineEdit
            cell 0,1 1x1: buttonBrowseSource QPushButton
            cell 1,0 1x2: label_216 QLabel autoFillBackground=true wordWrap=true
          row 3 label: label_9 QLabel
          row 3 field: horizontalLayout_4 QHBoxLayout spacing=6 margins=-,-,-,-
            editDest QLineEdit
            buttonBrowseDest QPushButton
          row 4 label: label_10 QLabel
          row 4 field: horizontalLayout_5 QHBoxLayout spacing=6 margins=-,-,-,-
            editLog QLineEdit
            buttonBrowseLog QPushButton
          row 5 label: label_11 QLabel
          row 5 field: horizontalLayout_9 QHBoxLayout spacing=6 margins=-,-,-,-
            editExcel QLineEdit
            buttonBrowseExcel QPushButton
          row 6 field: gridLayout_3 QGridLayout spacing=0/0 margins=-,-,10,10
            cell 0,0 1x1: label_220 QLabel sizePolicy=Preferred/Expanding maximumSize=any x15 autoFillBackground=true wordWrap=true indent=10
            cell 1,0 1x1: label_214 QLabel sizePolicy=Preferred/Fixed autoFillBackground=true wordWrap=true indent=10
            cell 0,1 2x1: label_223 QLabel sizePolicy=Preferred/Fixed autoFillBackground=true wordWrap=true indent=10
          row 7 label: label_6 QLabel
          row 7 field: horizontalLayout_7 QHBoxLayout spacing=6 margins=-,-,-,-
            spinFileSize QSpinBox maximumSize=90x any minimum=1024 maximum=1048576 singleStep=5120 value=51200
            labelFileSizeMB QLabel sizePolicy=Fixed/Preferred
            label_FileSizeNotice QLabel autoFillBackground=true
          row 8 label: label_7 QLabel
          row 8 field: horizontalLayout_11 QHBoxLayout spacing=6 margins=-,-,-,-
            spinIterations QSpinBox maximumSize=90x any minimum=1 maximum=100 value=1
            spacer 40x20 Expanding/Minimum
          row 9 label: label_15 QLabel
          row 9 field: checkWriteDone QCheckBox
          row 10 field: spacer 20x10 Minimum/Fixed
          row 11 spanning: groupBox_3 QGroupBox
            formLayout QFormLayout growth=AllNonFixedFieldsGrow spacing=6/0 margins=-,0,2,2
              row 0 spanning: label_219 QLabel autoFillBackground=true wordWrap=true indent=10
              row 1 label: label_21 QLabel
              row 1 field: checkNoChunks QCheckBox
              row 2 label: label_3 QLabel
              row 2 field: horizontalLayout_6 QHBoxLayout spacing=6 margins=-,-,-,-
                spinChunkSize QSpinBox maximumSize=90x any minimum=1 maximum=10240 value=512
                labelChunkSizeMB QLabel
              row 3 label: label_30 QLabel
              row 3 field: checkFlush QCheckBox
              row 4 label: label_4 QLabel
              row 4 field: gridLayout QGridLayout spacing=6/0 margins=-,-,-,-
                cell 0,0 1x1: spinChunkWait QSpinBox maximumSize=90x any maximum=500
                cell 0,1 1x1: label_26 QLabel
          row 12 spanning: groupBox_5 QGroupBox
            formLayout_2 QFormLayout growth=AllNonFixedFieldsGrow spacing=6/0 margins=-,0,2,3
              row 0 label: label_5 QLabel
              row 0 field: comboSystemBuffer QComboBox currentIndex=0
              row 1 label: label_22 QLabel
              row 1 field: checkPreallocate QCheckBox
              row 2 label: label_24 QLabel
              row 2 field: comboCacheMode QComboBox currentIndex=0
      spacer 20x20 Minimum/Expanding
      groupBox_6 QGroupBox
        horizontalLayout_8 QHBoxLayout spacing=20 margins=20,0,5,5
          buttonCreateNew QPushButton shortcut=Ctrl+Return
          buttonCreateOverwrite QPushButton shortcut=Ctrl+Shift+Return
          spacer 40x20 Expanding/Minimum
      spacer 20x20 Minimum/Expanding
      label_222 QLabel autoFillBackground=true wordWrap=true indent=10
)";
    return tree.split('\n', Qt::SkipEmptyParts);
}
