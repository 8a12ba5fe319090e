# Fails when one of SOURCES includes a QtWidgets header. Run by the build for every
# logic library; see corvane_forbid_widgets().
set(widget_include
    "#[ \t]*include[ \t]*[<\"](QtWidgets/|QWidget|QDialog|QApplication|QMainWindow|QMessageBox|QLabel|QPushButton|QSystemTrayIcon|QComboBox|QLineEdit|QCheckBox|QMenu|QTabBar|QTabWidget|QFileDialog|QStyle)")
set(offenders "")
foreach(file IN LISTS SOURCES)
    if(NOT EXISTS ${file})
        continue()
    endif()
    file(STRINGS ${file} lines REGEX "${widget_include}")
    foreach(line IN LISTS lines)
        list(APPEND offenders "${file}: ${line}")
    endforeach()
endforeach()
if(offenders)
    list(JOIN offenders "\n  " text)
    message(FATAL_ERROR "${TARGET} is a logic library and must not include widgets:\n  ${text}")
endif()
file(TOUCH ${STAMP})
