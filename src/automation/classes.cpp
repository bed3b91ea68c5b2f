#include "classes.h"

#include "table_object.h"

namespace voxa::automation {

namespace {

template <auto object>
IUnknown* make() {
  return object();
}

const CreatableClass classes[] = {
    {&__uuidof(::Glob), L"Glob", makeGlob},
    {&__uuidof(::QDB), L"QDB", make<qdbObject>},
    {&__uuidof(::SeqFile), L"SeqFile", makeSeqFile},
    {&__uuidof(::CommandFile), L"CommandFile", make<commandFileObject>},
    {&__uuidof(::UFile), L"UFile", makeUFile},
    {&__uuidof(::Strings), L"Strings", make<stringsObject>},
    {&__uuidof(::Inter), L"Inter", makeInter},
    {&__uuidof(::Com), L"Com", make<comObject>},
    {&__uuidof(::Station), L"Station", make<stationObject>},
    {&__uuidof(::Reader), L"Reader", make<readerObject>},
    {&__uuidof(::Cardholder), L"Cardholder", make<cardholderObject>},
    {&__uuidof(::AccessGroup), L"AccessGroup", make<accessGroupObject>},
    {&__uuidof(::BadgeFormat), L"BadgeFormat", make<badgeFormatObject>},
    {&__uuidof(::WeeklyProgram), L"WeeklyProgram", make<weeklyProgramObject>},
    {&__uuidof(::DailyProgram), L"DailyProgram", make<dailyProgramObject>},
    {&__uuidof(::Holidays), L"Holidays", make<holidaysObject>},
    {&__uuidof(::Journal), L"Journal", make<journalObject>},
    {&__uuidof(::Alarm), L"Alarm", make<alarmObject>},
    {&__uuidof(::Controllers), L"Controllers", makeControllers},
    {&__uuidof(::DBEngine), L"DBEngine", makeDBEngine},
};

}  // namespace

std::span<const CreatableClass> creatableClasses() {
  return classes;
}

}  // namespace voxa::automation
