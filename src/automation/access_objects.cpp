#include "access/access_group.h"
#include "access/badge_format.h"
#include "access/cardholder.h"
#include "table_object.h"

namespace voxa::automation {

namespace {

class CardholderObject final : public TableObject<CardholderObject, ::ICardholder, &QDB::Cardholders> {
 public:
  STDMETHODIMP download(short Id, short* status) override {
    return give(status, [&] { return table().download(Id); });
  }
  STDMETHODIMP generalDownload(::ComponentType compType, BSTR compName, short Params,
                               VARIANT_BOOL* AlreadyComTested, short* status) override {
    return give(status, [&] {
      Flag tested(AlreadyComTested);
      return table().generalDownload(componentOf(compType), fromBstr(compName), Params, &tested.value());
    });
  }
  STDMETHODIMP invalidate(short cardNum, ::ComponentType compType, BSTR compName, short* status) override {
    return give(status,
                [&] { return table().invalidate(cardNum, componentOf(compType), fromBstr(compName)); });
  }
  STDMETHODIMP delete_(short cardNum, short* status) override {
    return give(status, [&] { return table().delete_(cardNum); });
  }
  STDMETHODIMP createGroup(long firstCardNum, BSTR firstCardCode, short nCards, short accessGroupId,
                           VARIANT_BOOL GroupMode, short* status) override {
    return give(status, [&] {
      return table().createGroup(firstCardNum, fromBstr(firstCardCode), nCards, accessGroupId,
                                 GroupMode != 0);
    });
  }
  STDMETHODIMP getCardNumId(short cardNum, short* Id) override {
    return give(Id, [&] { return table().getCardNumId(cardNum); });
  }
  STDMETHODIMP getNameByCardNum(short cardNum, BSTR* name) override {
    return give(name, [&] { return table().getNameByCardNum(cardNum); });
  }
  STDMETHODIMP getCardNumInUse(short cardNum, VARIANT_BOOL* value) override {
    return give(value, [&] { return table().getCardNumInUse(cardNum); });
  }
  STDMETHODIMP getCardCodeInUse(long cardCode, VARIANT_BOOL* value) override {
    return give(value, [&] { return table().getCardCodeInUse(cardCode); });
  }
  STDMETHODIMP getFreeCardNum(short* cardNum) override {
    return give(cardNum, [] { return table().getFreeCardNum(); });
  }
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
};

class AccessGroupObject final : public TableObject<AccessGroupObject, ::IAccessGroup, &QDB::AccessGroups> {
 public:
  STDMETHODIMP get_DefaultName(BSTR* name) override {
    return give(name, [] { return table().DefaultName(); });
  }
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
  STDMETHODIMP getId(BSTR Name, short* Id) override {
    return give(Id, [&] { return table().getId(fromBstr(Name)); });
  }
  STDMETHODIMP download(short Id, short Params, short readerId, short* status) override {
    return give(status, [&] { return table().download(Id, Params, readerId); });
  }
  STDMETHODIMP addReaderToDefaultGroup(short readerId) override {
    return call([&] { table().addReaderToDefaultGroup(readerId); });
  }
  STDMETHODIMP deleteReaderFromAccessGroups(short readerId) override {
    return call([&] { table().deleteReaderFromAccessGroups(readerId); });
  }
  STDMETHODIMP AccessGroupCheckCom(short* Id, VARIANT* value) override {
    if (Id == nullptr) return E_POINTER;
    return give(value, [&] { return Value(table().AccessGroupCheckCom(*Id)); });
  }
};

class BadgeFormatObject final : public TableObject<BadgeFormatObject, ::IBadgeFormat, &QDB::BadgeFormat> {
 public:
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
  STDMETHODIMP CreateTable() override {
    return call([] { table().CreateTable(); });
  }
  STDMETHODIMP download(short BadgeFormatID, short* ReaderNumber, VARIANT_BOOL* isVRMD1,
                        ::ComponentType compType, BSTR compName, short Params, VARIANT_BOOL* AlreadyComTested,
                        short* status) override {
    if (ReaderNumber == nullptr || isVRMD1 == nullptr) return E_POINTER;
    return give(status, [&] {
      Flag newModel(isVRMD1);
      Flag tested(AlreadyComTested);
      return table().download(BadgeFormatID, *ReaderNumber, newModel.value(), componentOf(compType),
                              fromBstr(compName), Params, &tested.value());
    });
  }
};

}  // namespace

::ICardholder* cardholderObject() {
  return CardholderObject::get();
}
::IAccessGroup* accessGroupObject() {
  return AccessGroupObject::get();
}
::IBadgeFormat* badgeFormatObject() {
  return BadgeFormatObject::get();
}

}  // namespace voxa::automation
